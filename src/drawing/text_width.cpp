#include "drawing/text_width.h"

#include <array>

namespace torvane::drawing {

namespace {

// Thousandths of the size that the characters from the blank to the tilde are wide.
using Widths = std::array<int, 95>;
constexpr Widths Regular{
    318, 401, 460, 838, 636, 950, 780, 275, 390, 390, 500, 838, 318, 361,  318, 337, 636, 636, 636,
    636, 636, 636, 636, 636, 636, 636, 337, 337, 838, 838, 838, 531, 1000, 684, 686, 698, 770, 632,
    575, 775, 752, 295, 295, 656, 557, 863, 748, 787, 603, 787, 695, 635,  611, 732, 684, 989, 685,
    611, 685, 390, 337, 390, 838, 500, 500, 613, 635, 550, 635, 615, 352,  635, 634, 278, 278, 579,
    278, 974, 634, 612, 635, 635, 411, 521, 392, 634, 592, 818, 592, 592,  525, 636, 337, 636, 838};
constexpr Widths Bold{348, 456, 521, 838, 696,  1002, 872, 306,  457, 457, 523, 838, 380, 415,
                      380, 365, 696, 696, 696,  696,  696, 696,  696, 696, 696, 696, 400, 400,
                      838, 838, 838, 580, 1000, 774,  762, 734,  830, 683, 683, 821, 837, 372,
                      372, 775, 637, 995, 837,  850,  733, 850,  770, 720, 682, 812, 774, 1103,
                      771, 724, 725, 457, 365,  457,  838, 500,  500, 675, 716, 593, 716, 678,
                      435, 716, 712, 343, 343,  665,  343, 1042, 712, 687, 716, 716, 493, 595,
                      478, 712, 652, 924, 645,  652,  582, 712,  365, 712, 838};

// Of whatever else there is: signs and letters of other alphabets.
constexpr int Other = 700;
constexpr int Wide = 1000;  ///< of scripts whose characters fill a square

int WidthOf(const std::string& text, const Widths& widths) {
  int width = 0;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte >= ' ' && byte <= '~') width += widths[byte - static_cast<unsigned char>(' ')];
    if (byte >= 0xC0U) width += byte >= 0xE3U ? Wide : Other;
  }
  return width;
}

}  // namespace

double WidthOf(const Line& line, int size) {
  int width = 0;
  for (const Run& run : line) {
    const bool bold = run.What == Run::Kind::Constant || run.What == Run::Kind::Signal;
    width += WidthOf(run.Text, bold ? Bold : Regular);
  }
  return width * size / 1000.0;
}

}  // namespace torvane::drawing
