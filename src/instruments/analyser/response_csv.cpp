#include "instruments/analyser/response_csv.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>

#include "core/files/input_file.h"
#include "core/files/model_file_lines.h"
#include "core/text.h"

namespace torvane {

namespace {

constexpr std::size_t MaxFileSize = std::size_t{16} << 20;
constexpr std::size_t PieceSize = 65536;
constexpr std::size_t MaxColumns = 100;
constexpr int Patience = 2000;  // milliseconds that a pipe may stay silent
// Beyond these a value is no measurement.
constexpr double MaxHz = 1e12;
constexpr double MinHz = 1e-12;
constexpr double MaxGain = 2000.0;  // dB
constexpr double MaxPhase = 1e6;    // degrees

using Fields = std::vector<std::string_view>;

std::string_view Trimmed(std::string_view text) {
  constexpr std::string_view around = " \t\"";
  const std::size_t first = text.find_first_not_of(around);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(around) - first + 1);
}

Fields Split(std::string_view line, char separator) {
  Fields fields;
  while (fields.size() < MaxColumns) {
    const std::size_t end = line.find(separator);
    fields.push_back(Trimmed(line.substr(0, end)));
    if (end == std::string_view::npos) break;
    line.remove_prefix(end + 1);
  }
  return fields;
}

char SeparatorOf(std::string_view line) {
  for (const char separator : {';', '\t'}) {
    if (line.find(separator) != std::string_view::npos) return separator;
  }
  return ',';
}

std::string Fault(int line, const std::string& what) {
  return "line " + std::to_string(line) + ": " + what;
}

// "Gain (dB)" and " gain" are both "gain".
std::string ColumnName(std::string_view caption) {
  std::string name(Trimmed(caption.substr(0, caption.find_first_of("(["))));
  for (char& c : name) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return name;
}

/// Where the columns stand; npos for one that is not there.
struct Columns {
  static constexpr std::size_t None = std::string_view::npos;
  std::size_t Hz = 0;
  std::size_t Gain = 1;
  std::size_t Phase = 2;
  std::size_t Coherence = None;
  std::size_t Excited = None;

  bool AreWhole() const { return Hz != None && Gain != None && Phase != None; }
};

Columns NamedColumns(const Fields& captions) {
  Columns columns{Columns::None, Columns::None, Columns::None, Columns::None, Columns::None};
  const auto take = [](std::size_t& column, std::size_t found) {
    if (column == Columns::None) column = found;
  };
  for (std::size_t i = 0; i < captions.size(); ++i) {
    const std::string name = ColumnName(captions[i]);
    if (name == "frequency" || name == "freq" || name == "hz") take(columns.Hz, i);
    if (name == "gain" || name == "magnitude" || name == "mag") take(columns.Gain, i);
    if (name == "phase") take(columns.Phase, i);
    if (name == "coherence") take(columns.Coherence, i);
    if (name == "excited") take(columns.Excited, i);
  }
  return columns;
}

/// Takes the lines of a response one by one.
class ResponseReader {
 public:
  /// What is wrong with the line; empty when nothing is.
  std::string Take(std::string_view line, int number) {
    if (line.starts_with('#') || Trimmed(line).empty()) return {};
    if (!begun_) {
      begun_ = true;
      separator_ = SeparatorOf(line);
      const Fields fields = Split(line, separator_);
      if (!ParseNumber(fields.front())) return TakeCaptions(fields, number);
    }
    return TakePoint(Split(line, separator_), number);
  }

  ResponseCurve Curve;

 private:
  std::string TakeCaptions(const Fields& captions, int number) {
    columns_ = NamedColumns(captions);
    if (columns_.AreWhole()) return {};
    return Fault(number, "the columns must be Frequency, Gain and Phase");
  }

  std::string TakePoint(const Fields& fields, int number) {
    const auto value = [&](std::size_t column) {
      return column < fields.size() ? ParseNumber(fields[column]) : std::optional<double>();
    };
    const auto hz = value(columns_.Hz);
    const auto gain = value(columns_.Gain);
    const auto phase = value(columns_.Phase);
    if (!hz || !gain || !phase) return Fault(number, "frequency, gain and phase must be numbers");
    if (*hz == 0.0) return {};
    if (!(*hz >= MinHz && *hz <= MaxHz)) return Fault(number, "no frequency in Hz");
    if (!Curve.empty() && *hz <= Curve.back().Hz) {
      return Fault(number, "the frequency is not above the one before it");
    }
    if (std::abs(*gain) > MaxGain) return Fault(number, "no gain in dB");
    if (std::abs(*phase) > MaxPhase) return Fault(number, "no phase in degrees");
    if (Curve.size() == MaxResponsePoints) {
      return Fault(number, "more than " + std::to_string(MaxResponsePoints) + " points");
    }
    Curve.push_back({*hz, *gain, *phase,
                     std::clamp(value(columns_.Coherence).value_or(1.0), 0.0, 1.0),
                     value(columns_.Excited).value_or(1.0) != 0.0});
    return {};
  }

  bool begun_ = false;
  char separator_ = ',';
  Columns columns_;
};

}  // namespace

ResponseText ParseResponse(std::string_view text) {
  constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
  if (text.starts_with(byteOrderMark)) text.remove_prefix(byteOrderMark.size());
  ResponseReader reader;
  LineReader lines(text);
  for (std::string line; lines.Next(line);) {
    std::string fault = reader.Take(line, lines.Number());
    if (!fault.empty()) return {{}, std::move(fault)};
  }
  if (reader.Curve.empty()) return {{}, "no points"};
  return {std::move(reader.Curve), {}};
}

ResponseText ReadResponseFile(const std::string& path) {
  InputFile file(path, Patience);
  const auto fault = [&](const std::string& what) {
    return ResponseText{{}, "\"" + path + "\": " + what};
  };
  if (!file.IsOpen()) return fault("cannot be opened");
  if (file.Size() > MaxFileSize) return fault("too large for a response");
  std::string text;
  std::array<char, PieceSize> piece{};
  for (;;) {
    const ssize_t count = file.Read(piece.data(), piece.size());
    if (count < 0) return fault("cannot be read");
    if (count == 0) break;
    text.append(piece.data(), static_cast<std::size_t>(count));
    if (text.find('\0', text.size() - static_cast<std::size_t>(count)) != std::string::npos) {
      return fault("no plain text");
    }
    if (text.size() > MaxFileSize) return fault("too large for a response");
  }
  ResponseText response = ParseResponse(text);
  return response.Fault.empty() ? std::move(response) : fault(response.Fault);
}

}  // namespace torvane
