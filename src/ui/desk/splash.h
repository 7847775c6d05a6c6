#pragma once

#include <QSplashScreen>

namespace torvane {

/// The picture shown while the program begins; a click closes it.
class SplashScreen : public QSplashScreen {
 public:
  SplashScreen();
};

}  // namespace torvane
