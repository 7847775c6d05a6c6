#pragma once

#include <QSplashScreen>

namespace torvane {

/// The picture shown while the program begins; a click closes it.
class SplashF : public QSplashScreen {
 public:
  SplashF();
};

}  // namespace torvane
