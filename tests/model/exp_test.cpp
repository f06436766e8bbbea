#include "model/exp.h"

#include <tuple>
#include <utility>
#include <vector>

#include "tests/support.h"

TEST(ExpList, KeepsTheLengthFromEachCell) {
  Program program;
  Exp* e = program.prg.true_exp;
  ExpList list(e, new ExpList(e));
  list.concat(new ExpList(e, new ExpList(e, new ExpList(e))));
  list.concat(nullptr);
  int expected = 5;
  for (const ExpList* cell = &list; cell != nullptr; cell = cell->next)
    EXPECT_EQ(expected--, cell->length);
  EXPECT_EQ(0, expected);
}

TEST(Exp, KeepsAnnotationsByDecreasingKeys) {
  Exp e(CONST_n, 1, nullptr, -1);
  int first, second, third;
  e.put_info(3, &first);
  e.put_info(5, &second);
  e.put_info(3, &third);
  e.put_info(4, nullptr);
  std::vector<std::pair<int, void*>> kept;
  for (const ExpInfo* info = e.infos(); info != nullptr; info = info->next)
    kept.push_back({info->key, e.get_ptr_info(info->key)});
  EXPECT_EQ((std::vector<std::pair<int, void*>>{{5, &second}, {4, nullptr}, {3, &third}}), kept);
  for (const int missing : {0, 1, 6}) EXPECT_EQ(nullptr, e.get_ptr_info(missing));
  EXPECT_EQ(0, e.get_int_info(4));
  for (const int dropped : {4, 6, 3, 5}) e.drop_info(dropped);
  EXPECT_EQ(nullptr, e.infos());
  const int key = take_a_key();
  EXPECT_EQ(key + 1, take_a_key());
}

// Eight bytes of each name can be read.
TEST(Exp, HoldsAShortNameWhereThereIsRoom) {
  ExpHeap heap;
  const auto leaf_that_is_to_hold = [&](int symbol, const char* name) {
    Exp* leaf = heap.leaf(INPUT_n, symbol, nullptr, -1);
    leaf->hold_name(name);
    return leaf;
  };
  const int last = (1 << 21) - 1;
  for (const int symbol : {1, last})
    EXPECT_STREQ("a_name7", leaf_that_is_to_hold(symbol, "a_name7")->held_name());
  for (const char* name : {"a_name_8", "a\ttab_in"})
    EXPECT_EQ(nullptr, leaf_that_is_to_hold(1, name)->held_name());
  for (const int symbol : {-1, 0, last + 2}) {
    Exp* leaf = leaf_that_is_to_hold(symbol, "a_name7");
    EXPECT_EQ(nullptr, leaf->held_name());
    leaf->ident &= last;
    EXPECT_EQ(nullptr, leaf->held_name());
  }
  Exp* leaf = leaf_that_is_to_hold(1, "operand");
  Exp* inverse = heap.node(NOT_n, 1, &leaf);
  inverse->ident = 1;
  inverse->hold_name("inverse");
  EXPECT_EQ(leaf, inverse->args()[0]);
}

TEST(Exp, ReportsQuestionsToTheWrongKind) {
  EXPECT_STREQ("->", opkey(ARROW_n));
  EXPECT_STREQ("", opkey(EXP_NATURES));
  Exp leaf(CONST_n, 1, nullptr, -1);
  Exp projection(PROJ_n, &leaf, 2), call(CALL_n, &leaf, 7);
  EXPECT_EQ("projection_order called on 'CALL_n' operator",
            stderr_of([&] { EXPECT_EQ(0, call.projection_order()); }));
  EXPECT_EQ("Exp::function_name called on 'PROJ_n' operator",
            stderr_of([&] { EXPECT_EQ(0, projection.function_ident()); }));
}

TEST(Exp, IsBuiltFromOperandsOrAList) {
  Program program;
  Exp* t = program.prg.true_exp;
  Exp* f = program.prg.false_exp;
  Exp either(OR_n, t, f), choice(IF_n, t, f, &either);
  ExpList list(t, new ExpList(f, new ExpList(&choice)));
  Exp none_of(NOR_n, &list);
  EXPECT_EQ("nor(true, false,  if (true) then (false) else ((true)or(false)))",
            written([&](PtyStream* out) { none_of.print(out, &program.symbols); }));
}

// The leak check sees what a heap has not freed.
TEST(ExpHeap, FreesWhatItsNodesOwn) {
  ExpHeap heap;
  Exp* leaf = heap.leaf(CONST_n, 1, nullptr, -1);
  Fract half(1, 2);
  heap.enter(new Exp(RCL_n, 1, &leaf, &half, half));
  heap.node(CALL_n, 1, &leaf, 7)->put_info(1, nullptr);
}

// A pass marks nodes and takes its marks back; what they are made of moves there and back.
TEST(Exp, StaysWhatItIsUnderAnAnnotation) {
  ExpHeap heap;
  Exp* leaf = heap.leaf(CONST_n, 1, nullptr, -1);
  Exp* operands[] = {leaf, heap.node(NOT_n, 1, &leaf)};
  Exp* e = heap.node(CALL_n, 2, operands, 7);
  for (const bool is_marked : {false, true, false}) {
    for (Exp* each : {leaf, e}) is_marked ? each->put_info(1, leaf) : each->drop_info(1);
    EXPECT_EQ(std::make_tuple(operands[0], operands[1], 7),
              std::make_tuple(e->args()[0], e->args()[1], e->order()));
    int nodes = 0;
    heap.each([&](Exp*) { ++nodes; });
    EXPECT_EQ(3, nodes);
  }
  // Neither do other annotations go with one, nor a key or a rank.
  for (const bool has_key : {false, true}) {
    e = heap.node(NOT_n, 1, &leaf);
    has_key ? e->set_key(7) : e->set_order(7);
    for (const int key : {1, 2}) e->put_info(key, leaf);
    e->drop_info(1);
    EXPECT_EQ(leaf, e->get_ptr_info(2));
    e->drop_info(2);
    EXPECT_EQ(std::make_tuple(leaf, has_key ? 7 : 0, has_key ? 0 : 7),
              std::make_tuple(e->args()[0], e->key(), e->order()));
  }
}
