#include "plot/response_lines.h"

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
  LineMaker(FrequencyAnalyser& analyser, int slot, ResponseQuantity quantity, int width)
      : analyser_(analyser), slot_(slot), quantity_(quantity), width_(width) {}

  ResponseLines Make() {
    const FrequencyAnalyser::Indices points = analyser_.Points(slot_);
    const int last = points.End - 1;
    int index = points.First;
    const double low = Frequency(-0.5);
    while (index <= last && analyser_.PointHz(slot_, index) < low) ++index;
    result_.Columns.assign(static_cast<std::size_t>(width_) + 1, NoValue);
    for (int x = 0; x <= width_; ++x) {
      const double edge = Frequency(x + 0.5);
      int past = index;
      while (past <= last && analyser_.PointHz(slot_, past) < edge) ++past;
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
  double Frequency(double column) const { return analyser_.AxisFrequency(column / width_); }
  double ValueOf(int index) const {
    switch (quantity_) {
      case ResponseQuantity::Gain:
        return analyser_.GainOf(slot_, index);
      case ResponseQuantity::Phase:
        return analyser_.PhaseOf(slot_, index);
      default:
        return analyser_.Coherence(slot_, index);
    }
  }

  std::optional<double> ReadAt(double hz) const {
    switch (quantity_) {
      case ResponseQuantity::Gain:
        return analyser_.GainRead(slot_, hz);
      case ResponseQuantity::Phase:
        return analyser_.PhaseRead(slot_, hz);
      default:
        return CoherenceAt(hz);
    }
  }

  std::optional<double> CoherenceAt(double hz) const {
    const FrequencyAnalyser::Range range = analyser_.DataRange(slot_);
    if (hz < range.Low || hz > range.High) return std::nullopt;
    const double index = analyser_.IndexAt(slot_, hz);
    const int below = static_cast<int>(index);
    const double share = index - below;
    if (share == 0.0) return analyser_.Coherence(slot_, below);
    return (1.0 - share) * analyser_.Coherence(slot_, below) +
           share * analyser_.Coherence(slot_, below + 1);
  }

  bool Breaks(double value) const {
    return quantity_ == ResponseQuantity::Phase && last_ && PhaseWraps(*last_, value);
  }

  void AddBetween(int x) {
    const double hz = Frequency(x);
    const std::optional<double> value = ReadAt(hz);
    if (value) {
      AddPoint({static_cast<double>(x), *value});
      result_.Columns[static_cast<std::size_t>(x)] = *value;
    } else {
      EndLine();
    }
  }

  void AddBin(int x, int index) {
    const double low = analyser_.FreqMin();
    const double share =
        std::log(analyser_.PointHz(slot_, index) / low) / std::log(analyser_.FreqMax() / low);
    const double value = ValueOf(index);
    if (!analyser_.Excited(slot_, index)) {
      EndLine();
      AddFaint(x, value);
      return;
    }
    AddPoint({share * width_, value});
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
      const double value = ValueOf(index);
      if (!analyser_.Excited(slot_, index)) {
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

  void AddFaint(int x, double value) {
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

  FrequencyAnalyser& analyser_;
  int slot_;
  ResponseQuantity quantity_;
  int width_;
  ResponseLines result_;
  QPolygonF line_;
  std::optional<double> last_;
};

}  // namespace

ResponseLines MakeResponseLines(FrequencyAnalyser& analyser, int slot, ResponseQuantity quantity,
                                int width) {
  return LineMaker(analyser, slot, quantity, width).Make();
}

}  // namespace torvane
