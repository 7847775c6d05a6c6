#include "drawing/patterns.h"

#include <algorithm>

#include "drawing/formula.h"

namespace torvane::drawing {

using loops::Expression;

namespace {

bool IsOperator(const Expression& e, const char* text) {
  return e.What == Expression::Kind::Operator && e.Text == text && e.Parts.size() == 2;
}

bool IsCall(const Expression& e, const char* function, std::size_t arguments) {
  return e.What == Expression::Kind::Call && e.Text == function && e.Parts.size() == arguments;
}

// "u > limit" in either order of writing; `above` tells which way.
bool IsBeyond(const Expression& condition, const Expression& u, const Expression& limit,
              bool above) {
  const bool more = IsOperator(condition, ">") || IsOperator(condition, ">=");
  const bool less = IsOperator(condition, "<") || IsOperator(condition, "<=");
  if (!more && !less) return false;
  const bool asWritten = more == above;
  return Same(condition.Parts[asWritten ? 0 : 1], u) &&
         Same(condition.Parts[asWritten ? 1 : 0], limit);
}

// The constant and the other argument of "min(limit, u)".
std::optional<std::pair<Expr, Expr>> AsBound(const Expression& e, const char* function,
                                             const LoopNames& names) {
  if (!IsCall(e, function, 2)) return {};
  for (const std::size_t limit : {0U, 1U}) {
    if (names.IsConstant(e.Parts[limit]) && !names.IsConstant(e.Parts[1 - limit])) {
      return std::pair(&e.Parts[limit], &e.Parts[1 - limit]);
    }
  }
  return {};
}

}  // namespace

std::optional<Limits> AsLimits(const Expression& e, const LoopNames& names) {
  if (e.What == Expression::Kind::If && e.Parts.size() == 5) {
    const Expression& u = e.Parts[4];
    const auto& parts = e.Parts;
    if (names.IsConstant(u) || !names.IsConstant(parts[1]) || !names.IsConstant(parts[3]))
      return {};
    for (const bool upperFirst : {true, false}) {
      if (IsBeyond(parts[0], u, parts[1], upperFirst) &&
          IsBeyond(parts[2], u, parts[3], !upperFirst)) {
        return Limits{&u, &parts[upperFirst ? 3 : 1], &parts[upperFirst ? 1 : 3]};
      }
    }
    return {};
  }
  if (const auto least = AsBound(e, "max", names)) {
    if (const auto most = AsBound(*least->second, "min", names)) {
      return Limits{most->second, least->first, most->first};
    }
  }
  if (const auto most = AsBound(e, "min", names)) {
    if (const auto least = AsBound(*most->second, "max", names)) {
      return Limits{least->second, least->first, most->first};
    }
  }
  return {};
}

std::optional<Steps> AsSteps(const Expression& e, const LoopNames& names) {
  if (!IsOperator(e, "*")) return {};
  for (const std::size_t step : {0U, 1U}) {
    const Expression& call = e.Parts[1 - step];
    if (IsCall(call, "floor", 1) && IsOperator(call.Parts[0], "/") &&
        names.IsConstant(e.Parts[step]) && Same(call.Parts[0].Parts[1], e.Parts[step])) {
      return Steps{&call.Parts[0].Parts[0], &e.Parts[step]};
    }
  }
  return {};
}

bool IsCallOf(const Expression& e, const std::string& function, const std::string& name) {
  return IsCall(e, function.c_str(), 1) && e.Parts[0].IsName() && e.Parts[0].Text == name;
}

std::optional<Change> AsChange(const Expression& e) {
  const Expression& difference = IsOperator(e, "/") ? e.Parts[0] : e;
  if (!IsOperator(difference, "-") || !difference.Parts[0].IsName()) return {};
  if (!IsCallOf(difference.Parts[1], "pre", difference.Parts[0].Text)) return {};
  return Change{&difference.Parts[0], &difference == &e ? nullptr : &e.Parts[1]};
}

std::optional<std::vector<std::pair<bool, Expr>>> AsRunningSum(const std::string& x,
                                                               const Expression& e) {
  auto terms = TermsOf(e);
  const auto own = std::find_if(terms.begin(), terms.end(), [&](const auto& term) {
    return !term.first && IsCallOf(*term.second, "pre", x);
  });
  if (own == terms.end() || terms.size() < 2) return {};
  terms.erase(own);
  return terms;
}

}  // namespace torvane::drawing
