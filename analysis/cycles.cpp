#include "analysis/cycles.h"

#include <algorithm>
#include <limits>

namespace tamsel {

namespace {

constexpr size_t none = std::numeric_limits<size_t>::max();

// Who needs whom, by the equations' positions.
class Needs {
 public:
  Needs(EcPrg* prg, const std::vector<Equation>& equations);

  // What equation `i` needs now stands in edges from first[i] to first[i + 1].
  struct Edge {
    size_t to;
    int name;  // that it mentions
  };
  std::vector<size_t> first;
  std::vector<Edge> edges;
};

Needs::Needs(EcPrg* prg, const std::vector<Equation>& equations) {
  std::vector<size_t> defines(static_cast<size_t>(prg->symbols->nb_symbols) + 1, none);
  for (size_t i = 0; i < equations.size(); ++i)
    equations[i].each_name([&](int name) { defines[static_cast<size_t>(name)] = i; });
  const auto add = [&](int name) {
    const size_t symbol = static_cast<size_t>(name);
    if (symbol < defines.size() && defines[symbol] != none)
      edges.push_back({defines[symbol], name});
  };
  for (const Equation& equation : equations) {
    first.push_back(edges.size());
    each_mention(equation.right, [&](const Mention& mention, const Exp*) {
      if (mention.now && !mention.is_function) add(mention.symbol);
    });
    equation.each_name([&](int name) {
      if (const int clock = prg->ident(name)->clock; clock != prg->true_clock) add(clock);
    });
  }
  first.push_back(edges.size());
}

// Tarjan's strongly connected components, with the path on the heap. Returns the component of each
// equation.
std::vector<size_t> components_of(const Needs& needs) {
  const size_t count = needs.first.size() - 1;
  std::vector<size_t> component(count, none);
  std::vector<size_t> number(count, none);  // in the order of first visits
  std::vector<size_t> lowest(count);        // the lowest number that is reached
  std::vector<size_t> open;                 // visited, and in no component yet
  struct Frame {
    size_t equation;
    size_t next;  // edge
  };
  std::vector<Frame> path;
  size_t visited = 0;
  size_t components = 0;
  const auto visit = [&](size_t i) {
    number[i] = lowest[i] = visited++;
    open.push_back(i);
    path.push_back({i, needs.first[i]});
  };
  for (size_t root = 0; root < count; ++root) {
    if (number[root] == none) visit(root);
    while (!path.empty()) {
      const size_t i = path.back().equation;
      if (path.back().next < needs.first[i + 1]) {
        const size_t to = needs.edges[path.back().next++].to;
        if (number[to] == none)
          visit(to);
        else if (component[to] == none)
          lowest[i] = std::min(lowest[i], number[to]);
        continue;
      }
      path.pop_back();
      if (!path.empty())
        lowest[path.back().equation] = std::min(lowest[path.back().equation], lowest[i]);
      if (lowest[i] != number[i]) continue;
      while (component[i] == none) {
        component[open.back()] = components;
        open.pop_back();
      }
      ++components;
    }
  }
  return component;
}

// The names on a shortest way from `start` back to it, within its component; through another
// equation where it is not alone there.
std::vector<int> loop_through(const Needs& needs, const std::vector<size_t>& component,
                              bool is_alone, size_t start, std::vector<size_t>* reached_by) {
  std::vector<size_t> queue = {start};
  std::vector<size_t>& edge_to = *reached_by;  // none: not reached
  for (size_t head = 0; head < queue.size(); ++head) {
    const size_t i = queue[head];
    for (size_t e = needs.first[i]; e < needs.first[i + 1]; ++e) {
      const size_t to = needs.edges[e].to;
      if (component[to] != component[start] || edge_to[to] != none) continue;
      if (i == start && to == start && !is_alone) continue;
      edge_to[to] = e;
      if (to != start) {
        queue.push_back(to);
        continue;
      }
      std::vector<int> loop;
      // The edge to an equation belongs to the one before it on the way.
      size_t at = start;
      do {
        const size_t edge = edge_to[at];
        loop.push_back(needs.edges[edge].name);
        at = static_cast<size_t>(std::upper_bound(needs.first.begin(), needs.first.end(), edge) -
                                 needs.first.begin()) -
             1;
      } while (at != start);
      std::reverse(loop.begin(), loop.end());
      std::rotate(loop.begin(), loop.end() - 1, loop.end());
      return loop;
    }
  }
  return {};
}

}  // namespace

std::vector<Cycle> cycles_of(EcPrg* prg, const std::vector<Equation>& equations) {
  const Needs needs(prg, equations);
  const std::vector<size_t> component = components_of(needs);
  std::vector<size_t> members(equations.size());  // of each component
  for (const size_t c : component) ++members[c];
  std::vector<size_t> cycle_of(equations.size(), none);  // of each component
  std::vector<size_t> reached_by(equations.size(), none);
  std::vector<Cycle> cycles;
  for (size_t i = 0; i < equations.size(); ++i) {
    size_t& cycle = cycle_of[component[i]];
    if (cycle == none) {
      const bool is_alone = members[component[i]] == 1;
      std::vector<int> loop = loop_through(needs, component, is_alone, i, &reached_by);
      if (loop.empty()) continue;  // alone, and does not need itself
      cycle = cycles.size();
      cycles.push_back({{}, std::move(loop)});
    }
    cycles[cycle].equations.push_back(&equations[i]);
  }
  return cycles;
}

}  // namespace tamsel
