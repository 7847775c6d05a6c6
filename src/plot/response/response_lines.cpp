#include "plot/response/response_lines.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>

#include "instruments/analyser/response_reading.h"

namespace torvane {

namespace {

constexpr double NoValue = std::numeric_limits<double>::quiet_NaN();

class LineMaker {
 public:
  LineMaker(const Response& response, ResponseQuantity quantity, const FrequencyColumns& columns)
      : response_(response), quantity_(quantity), columns_(columns) {}

  ResponseLines Make() {
    const int end = response_.End();
    int index = response_.First();
    while (index < end && Hz(index) < columns_.LeftEdge(0)) ++index;
    result_.Columns.assign(static_cast<std::size_t>(columns_.Width()) + 1, NoValue);
    for (int x = 0; x <= columns_.Width(); ++x) {
      const double edge = columns_.RightEdge(x);
      int past = index;
      while (past < end && Hz(past) < edge) ++past;
      if (past == index) {
        AddBetween(x);
      } else if (past == index + 1) {
        AddBin(x, index);
      } else {
        AddBins(x, index, past);
      }
      index = past;
    }
    EndLine();
    return std::move(result_);
  }

 private:
  double Hz(int index) const { return response_.At(index)->Hz; }
  bool Trusted(int index) const { return response_.At(index)->Excited; }
  double Value(int index) const { return response_.ValueOf(quantity_, index).value_or(NoValue); }

  bool Breaks(double value) const {
    return quantity_ == ResponseQuantity::Phase && last_ && PhaseWraps(*last_, value);
  }

  void AddBetween(int x) {
    const std::optional<double> value = response_.Read(quantity_, columns_.Middle(x));
    if (value) {
      AddPoint({static_cast<double>(x), *value});
      result_.Columns[static_cast<std::size_t>(x)] = *value;
    } else {
      EndLine();
    }
  }

  void AddBin(int x, int index) {
    const double value = Value(index);
    if (!Trusted(index)) {
      EndLine();
      AddFaint(x, value);
      return;
    }
    AddPoint({columns_.ColumnOf(Hz(index)), value});
    result_.Points << line_.back();
    result_.Columns[static_cast<std::size_t>(x)] = value;
  }

  void AddPoint(const QPointF& point) {
    if (Breaks(point.y())) EndLine();
    line_ << point;
    last_ = point.y();
  }

  void AddBins(int x, int first, int past) {
    bool joins = last_.has_value();
    const double before = last_.value_or(0.0);
    std::optional<ResponseLines::Bar> bar;
    for (int index = first; index < past; ++index) {
      const double value = Value(index);
      if (!Trusted(index)) {
        AddFaint(x, value);
        continue;
      }
      if (bar && Breaks(value)) {
        result_.Bars.push_back(*bar);
        bar.reset();
      } else if (!bar && !line_.empty() && !Breaks(value)) {
        line_ << QPointF(x, value);
      }
      if (!bar) {
        const double join = joins && !Breaks(value) ? before : value;
        bar = {x, join, join};
        joins = false;
      }
      bar->Low = std::min(bar->Low, value);
      bar->High = std::max(bar->High, value);
      last_ = value;
    }
    if (!bar) return;
    result_.Bars.push_back(*bar);
    result_.Columns[static_cast<std::size_t>(x)] = *last_;
    // A line that ends here reaches the column; one that follows starts from it.
    const double value = *last_;
    if (line_.size() > 1) result_.Lines.push_back(line_);
    line_ = {QPointF(x + 1.0, value)};
  }

  // A gain of nothing has no place on the plot.
  void AddFaint(int x, double value) {
    if (quantity_ == ResponseQuantity::Gain && value <= NoGain) return;
    if (result_.Faint.empty() || result_.Faint.back().X != x) {
      result_.Faint.push_back({x, value, value});
    }
    ResponseLines::Bar& faint = result_.Faint.back();
    faint.Low = std::min(faint.Low, value);
    faint.High = std::max(faint.High, value);
  }

  void EndLine() {
    if (line_.size() > 1) result_.Lines.push_back(line_);
    line_.clear();
    last_.reset();
  }

  const Response& response_;
  ResponseQuantity quantity_;
  const FrequencyColumns& columns_;
  ResponseLines result_;
  QPolygonF line_;
  std::optional<double> last_;
};

}  // namespace

FrequencyColumns::FrequencyColumns(const ResponseAxes& axes, int width)
    : axes_(axes), width_(width) {
  const int count = 2 * (width + 1) + 1;
  halves_.reserve(static_cast<std::size_t>(count));
  for (int half = 0; half < count; ++half) {
    halves_.push_back(axes.AxisFrequency((0.5 * half - 0.5) / width));
  }
}

ResponseLines MakeResponseLines(const Response& response, ResponseQuantity quantity,
                                const FrequencyColumns& columns) {
  return LineMaker(response, quantity, columns).Make();
}

}  // namespace torvane
