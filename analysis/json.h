// analysis/json.h: a program as JSON.
#ifndef ANALYSIS_JSON_H
#define ANALYSIS_JSON_H

#include <functional>
#include <string>
#include <string_view>

#include "model/ecprg.h"

namespace tamsel {

// Hands an object with the members `node` (the node's name), `names` (one object a declared name,
// in order), `assertions` and `messages` to `take`, block by block: UTF-8, an object a line. Of the
// names that one equation defines together, the first has `with` and `definition`, and the others
// say which it is in `equation-of`. Linear in the program.
void write_json(EcPrg* prg, const std::function<void(std::string_view)>& take);
// Appends it to `out`.
void write_json(EcPrg* prg, std::string* out);

}  // namespace tamsel

#endif
