#include "core/constant.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "core/bench.h"
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

  UndoEntry entry;
  entry.Target = this;
  if (IsList()) {
    entry.Ints = {Choice(), static_cast<std::int32_t>(limited)};
  } else {
    entry.Doubles = {value_, limited};
  }
  Store(limited);
  entry.Description = name_ + " = " + DisplayText();
  bench_.History().Push(entry);
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
  Store(IsList() ? entry.Ints[0] : entry.Doubles[0]);
}

void Constant::Redo(const UndoEntry& entry) {
  Store(IsList() ? entry.Ints[1] : entry.Doubles[1]);
}

Undoable::Merged Constant::Merge(UndoEntry& earlier, const UndoEntry& later) const {
  earlier.Ints[1] = later.Ints[1];
  earlier.Doubles[1] = later.Doubles[1];
  earlier.Description = later.Description;
  // Of a list the numbers stay 0, of a number the indices.
  const bool same = earlier.Ints[0] == earlier.Ints[1] && earlier.Doubles[0] == earlier.Doubles[1];
  return same ? Merged::Nothing : Merged::Yes;
}

void Constant::Store(double value) {
  value_ = value;
  changed_ = true;
  // What an observer does may end another one's interest, or its own.
  const std::vector<ConstantObserver*> observers = observers_;
  for (ConstantObserver* observer : observers) observer->ConstantChanged(*this);
}

}  // namespace torvane
