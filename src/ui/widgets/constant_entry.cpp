#include "ui/widgets/constant_entry.h"

#include <optional>

#include "core/constant.h"
#include "core/text.h"
#include "ui/widgets/edit_binding.h"
#include "ui/widgets/notice.h"
#include "ui/widgets/typed_number.h"

namespace torvane {

bool EnterConstant(Constant& constant, const std::string& text, QWidget& control,
                   const QRect& area) {
  if (constant.IsList()) return constant.SetFromText(text);
  const std::string plain = WithoutSuffix(text);
  const std::optional<double> typed = ParseNumber(plain);
  const bool taken = constant.SetFromText(typed ? plain : text);
  if (typed && *typed != constant.Value()) {
    ShowNotice(control, area, QString::fromStdString(LimitNotice(*typed, constant.Value())));
  }
  return taken;
}

}  // namespace torvane
