#include "core/constant.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "core/bench.h"
#include "core/carried.h"
#include "core/messages.h"
#include "core/text.h"

namespace torvane {

Constant::Constant(ZelBenchTop& bench, std::string name, std::string unit, const Adjustable& range,
                   const std::string& description)
    : bench_(bench),
      name_(std::move(name)),
      unit_(std::move(unit)),
      description_(WithUnit(description, unit_)),
      lower_(std::min(range.Limit, range.OtherLimit)),
      upper_(std::max(range.Limit, range.OtherLimit)),
      default_(range.Default),
      value_(range.Default) {
  bench.AddConst(*this);
}

Constant::Constant(ZelBenchTop& bench, std::string name, std::vector<std::string> choices,
                   int defaultChoice, std::string description)
    : bench_(bench),
      name_(std::move(name)),
      description_(std::move(description)),
      lower_(0.0),
      upper_(static_cast<double>(choices.size()) - 1.0),
      default_(defaultChoice),
      value_(defaultChoice),
      choices_(std::move(choices)) {
  bench.AddConst(*this);
}

void Constant::Set(double value) {
  if (std::isnan(value)) return;
  double limited = std::clamp(value, lower_, upper_);
  if (IsList()) limited = std::trunc(limited);
  if (limited == value_) return;

  const NumberChange change{value_, limited};
  Store(limited);
  bench_.History().Push({this, name_ + " = " + DisplayText(), change});
}

bool Constant::SetFromText(const std::string& text, const std::string& where) {
  if (!IsList()) {
    const std::optional<double> number = ToNumber(text, where);
    if (number) Set(*number);
    return number.has_value();
  }
  const auto choice = std::find(choices_.begin(), choices_.end(), text);
  if (choice == choices_.end()) {
    Error("\"" + text + "\" is not a valid selection for \"" + name_ +
          "\". \n(Note:  you can double-click on the grid at the \nright of \"" + name_ +
          "\" and use adjust buttons.)" + where);
    return false;
  }
  Set(static_cast<double>(choice - choices_.begin()));
  return true;
}

std::string Constant::DisplayText() const {
  return IsList() ? choices_[static_cast<std::size_t>(Choice())] : FormatEdit(value_);
}

std::string Constant::FileText() const {
  return IsList() ? choices_[static_cast<std::size_t>(Choice())] : FormatShortest(value_);
}

void Constant::Undo(const UndoEntry& entry) {
  Store(std::get<NumberChange>(entry.What).Before);
}

void Constant::Redo(const UndoEntry& entry) {
  Store(std::get<NumberChange>(entry.What).After);
}

Undoable::Merged Constant::Merge(UndoEntry& earlier, const UndoEntry& later) const {
  auto& change = std::get<NumberChange>(earlier.What);
  change.After = std::get<NumberChange>(later.What).After;
  earlier.Description = later.Description;
  return change.Before == change.After ? Merged::Nothing : Merged::Yes;
}

void Constant::Store(double value) {
  value_ = value;
  changed_ = true;
  // What an observer does may end another one's interest, or its own.
  const std::vector<ConstantObserver*> observers = observers_;
  for (ConstantObserver* observer : observers) observer->ConstantChanged(*this);
}

void Constant::CarryChanged(Carried& carried) {
  carried.Keep(changed_);
}

}  // namespace torvane
