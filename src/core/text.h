#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace torvane {

/// The text without those characters at its ends.
std::string_view Trimmed(std::string_view text, std::string_view blanks = " \t");

/// The number that the whole text stands for, surrounding blanks apart; nothing when the text is
/// anything else or not finite. Independent of the locale.
std::optional<double> ParseNumber(std::string_view text);
/// As ParseNumber, of a whole number.
std::optional<int> ParseInteger(std::string_view text);

/// As ParseNumber, with a report when the text cannot be converted. Callers keep their value then.
/// `where` ends the report.
std::optional<double> ToNumber(std::string_view text, const std::string& where = {});
/// As ToNumber, of a whole number.
std::optional<int> ToInteger(std::string_view text);

/// Shortest text that reads back as the same number.
std::string FormatShortest(double x);

/// Five significant digits, right-aligned in eight characters ("%8.5g").
std::string FormatG(double x);

/// FormatG without the alignment, for edits and tables. Zero has no sign.
std::string FormatEdit(double x);

/// Five significant digits, all of them written ("2.1000", "-0.012300", "1.2000e+09"), for a
/// reading that changes. What is less than 1e-12 in magnitude is zero.
std::string FormatSteady(double x);

/// Number in general form: at most `precision` significant digits, without trailing zeros. Written
/// with an exponent ("1.5E-07", at least `exponentDigits` digits) below 0.00001 and where there are
/// more than `precision` digits before the point.
std::string FormatGeneral(double x, int precision, int exponentDigits);

/// The text with the unit behind it in brackets; either may be empty, and nothing has no unit.
std::string WithUnit(const std::string& text, const std::string& unit);

/// The text followed by CR LF.
std::string AppendLine(std::string_view text);

/// The text up to the first blank that stands before a "(", searching from the second character.
std::string StripRemark(const std::string& text);

/// Splits at blanks, CR, LF and commas; a run of separators counts as one. Returns the number of
/// fields, or -2 when there are more than `max`.
int SplitFields(std::string_view text, std::vector<std::string>& fields, int max);

}  // namespace torvane
