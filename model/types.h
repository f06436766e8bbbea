// model/types.h: types, and the records of the names that a program declares.
//
// Names are symbol numbers of the program's table, which these classes do not know. The program
// owns its types and records; pointers between them are borrowed. A null type stands for "none"
// (unknown).
#ifndef MODEL_TYPES_H
#define MODEL_TYPES_H

#include <memory>

#include "foundation/chunks.h"
#include "foundation/intlist.h"
#include "model/heap.h"

class Exp;
class FuncInfo;
class IdentInfo;
class PtyStream;
class SymbolTable;

// A named type (predefined, abstract or enumerated) or a tuple of named types. A program keeps one
// object for each name and for each list of members, so two types are equal when they are the same
// object.
class EcType {
 public:
  explicit EcType(int type_name) : name(type_name) {}
  // A tuple type. Takes `member_names`, which is not null.
  explicit EcType(IntList* member_names) : is_tuple(1), members(member_names) {}
  // Deletes the types after this one as well.
  ~EcType();
  EcType(const EcType&) = delete;
  EcType& operator=(const EcType&) = delete;

  // The name of member `i` (from 1) of a tuple type; 0 where there is none. Reports misuse.
  int member(int i);
  // The constant of rank `i` (from 0) of an enumerated type; null where there is none. Reports
  // misuse.
  IdentInfo* enum_const(int i);

  int number = 0;  // rank of a user's type, from 1; 0 for the others
  int line = 0;    // of its name in the text read; 0: none
  // The names of the user constants of this type; owned. Each stands where it is last in the list;
  // some may be gone.
  IntList* constants = nullptr;
  int gone_constants = 0;                     // how many, about
  int nb_enum = 0;                            // constants of an enumerated type
  std::unique_ptr<IdentInfo*[]> enum_consts;  // by rank; the records are the program's
  int is_tuple = 0;
  union {
    int name;          // of a named type
    IntList* members;  // names of the members' types, of a tuple type; owned
  };
  EcType* next = nullptr;  // of the program's list; owned
};

// What a symbol stands for. Its kind is asked with is_function and is_ident.
class SymbolInfo {
 public:
  SymbolInfo() = default;
  virtual ~SymbolInfo() = default;
  SymbolInfo(const SymbolInfo&) = delete;
  SymbolInfo& operator=(const SymbolInfo&) = delete;

  // This record as the kind asked for, or null.
  virtual FuncInfo* is_function() { return nullptr; }
  virtual IdentInfo* is_ident() { return nullptr; }
};

enum IdentMode {
  INPUT_mode = 0,
  OUTPUT_mode = 1,
  LOCAL_mode = 2,
  USR_CONST_mode = 3,
  ASSERT_mode = 4,  // the generated name of an assertion
  BOOL_CONST_mode = 5,
  INT_CONST_mode = 6,
  REAL_CONST_mode = 7,
  ENUM_CONST_mode = 8,
};

class IdentInfo : public SymbolInfo {
 public:
  IdentInfo(IdentMode role, int symbol, EcType* ident_type, int ident_clock)
      : type(ident_type), name(symbol), print_name(symbol), clock(ident_clock), mode(role) {}
  IdentInfo* is_ident() override { return this; }

  // First what a reference asks for, so that it takes one line of the cache.
  Exp* ident_exp = nullptr;   // the leaf that stands for it in expressions; null for an assertion
  Exp* definition = nullptr;  // right side, or the leaf of an input or constant; null until defined
  EcType* type;
  IntList* tuple_names = nullptr;  // all names of its tuple equation; the program's
  int name;
  int print_name;
  int clock;       // symbol of the boolean that clocks it; -1 while unknown
  int value = 0;   // a constant's position or number; the bits of a float for a real literal
  int order = -1;  // rank among inputs, outputs or locals, or in an enumeration; from 0
  IdentMode mode;
  int line = 0;  // of the name's declaration, or of an assertion, in the text read; 0: none
  int equation_line = 0;        // where the left side of its equation begins in that text; 0: none
  void* writer_info = nullptr;  // for writers to use; the model leaves it null
};

class FuncInfo : public SymbolInfo {
 public:
  // Takes both lists. They alternate a parameter's name and the name of its type, and may be null.
  FuncInfo(int symbol, EcType* takes, EcType* gives, IntList* param_list, IntList* result_list)
      : name(symbol),
        tuple_result(gives != nullptr ? gives->is_tuple : 0),
        param_type(takes),
        result_type(gives),
        params(param_list),
        results(result_list) {}
  ~FuncInfo() override {
    delete params;
    delete results;
  }
  FuncInfo* is_function() override { return this; }

  // Writes a list of parameters, "a : int; b : real". Defined with the writers.
  void print_params(IntList* list, SymbolTable* symbols, PtyStream* out);

  int name;
  int tuple_result;  // 1: the result type is a tuple
  int index = 0;     // rank among the program's functions of this `tuple_result`, from 0
  int line = 0;      // of its name in the text read; 0: none
  EcType* param_type;
  EcType* result_type;
  IntList* params;   // owned
  IntList* results;  // owned
};

// Records by symbol number; null for a symbol without a record. Owns the records.
class SymbolInfoArray : public tamsel::ChunkArray<SymbolInfo*> {
 public:
  SymbolInfoArray(int chunk_size, int first) : ChunkArray(chunk_size, first) {}
  ~SymbolInfoArray();
};

// Records in the order of their making.
using SymbolInfoHeap = tamsel::Heap<SymbolInfo>;

#endif
