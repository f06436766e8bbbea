#include "model/types.h"

#include "model/ecprg.h"

int EcType::member(int i) {
  if (!is_tuple) {
    EcPrg::ierror("EcType::member() called on non tuple type\n");
    return 0;
  }
  int member_name = 0;
  extract(members, i - 1, &member_name);
  return member_name;
}

IdentInfo* EcType::enum_const(int i) {
  if (nb_enum == 0) {
    EcPrg::ierror("EcType::enum_const(int) called on non enumerate type");
    return nullptr;
  }
  return i >= 0 && i < nb_enum ? enum_consts[i] : nullptr;
}
