// Destructors of the model. All are loops: a program may hold a million of anything.

#include "model/ecprg.h"

using namespace tamsel;

EcType::~EcType() {
  delete constants;
  if (is_tuple) delete members;
  for (EcType* type = next; type != nullptr;) {
    EcType* behind = type->next;
    type->next = nullptr;
    delete type;
    type = behind;
  }
}

SymbolInfoArray::~SymbolInfoArray() {
  for (ChunkArray* chunk = this; chunk != nullptr; chunk = chunk->next)
    for (int i = 0; i <= chunk->last_used; ++i) delete chunk->items[i];
}

ExpList::~ExpList() {
  for (ExpList* cell = next; cell != nullptr;) {
    ExpList* behind = cell->next;
    cell->next = nullptr;
    delete cell;
    cell = behind;
  }
}

// The heaps and maps follow, as members: replaced records are deleted after the others, and
// `info_heap` must not delete what `infos` has.
EcPrg::~EcPrg() {
  info_heap.release();
  delete infos;
  delete inputs;
  delete outputs;
  delete locals;
  delete assertions;
  delete constants;
  delete functions;
  delete tuple_functions;
  delete user_types;
  delete types;
}
