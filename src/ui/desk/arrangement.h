#pragma once

namespace torvane {

class Workspace;
class ZelBenchTop;

/// How the user left the windows of the instruments, kept from one model and from one start of the
/// program to the next. An instrument is known by its kind and name, in whatever model. Meters are
/// not remembered: each is made for one model, under a name of its own.
namespace arrangement {

/// Which windows are shown, and where they stand unless they fill the workspace.
void Remember(const Workspace& workspace);

/// Gives the instruments that have no place yet the one where they were left.
void RecallPlaces(const ZelBenchTop& bench);

/// Shows and hides the windows as the user has chosen.
void RecallHidden(Workspace& workspace);

}  // namespace arrangement
}  // namespace torvane
