#include "ui/widgets/constant_entry.h"

#include <optional>

#include "core/constant.h"
#include "core/text.h"
#include "ui/widgets/edit_binding.h"
#include "ui/widgets/notice.h"
#include "ui/widgets/typed_number.h"

namespace torvane {

void EnterConstant(Constant& constant, const std::string& text, QWidget& control,
                   const QRect& area) {
  if (constant.IsList()) {
    constant.SetFromText(text);
    return;
  }
  const std::string plain = WithoutSuffix(text);
  const std::optional<double> typed = ParseNumber(plain);
  constant.SetFromText(typed ? plain : text);
  if (typed && *typed != constant.Value()) {
    ShowNotice(control, area, QString::fromStdString(LimitNotice(*typed, constant.Value())));
  }
}

}  // namespace torvane
