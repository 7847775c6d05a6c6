#pragma once

namespace torvane {

class Session;

/// The work as it was when the program ended, which the next start brings back: model, constants,
/// instruments, the file that it belongs to and whether all of it is saved. A setting of the user's
/// turns that off.
namespace last_session {

bool IsOn();
/// What is kept goes when it is turned off.
void SetOn(bool on);

/// Keeps the session. The places of windows count where they were placed by hand. False after a
/// report when it cannot be written.
bool Keep(const Session& session);
/// Brings back what was kept; nothing where there is none.
void Bring(Session& session);

}  // namespace last_session
}  // namespace torvane
