#pragma once

namespace CLI {
class App;
}

namespace torvane::cli {

class Console;

// Each adds one command to the program. The command runs when the command line has been read, and
// throws WorkFault when it cannot be carried out.
void AddModelsCommand(CLI::App& app);
void AddConstantsCommand(CLI::App& app, Console& console);
void AddSignalsCommand(CLI::App& app, Console& console);
void AddPairsCommand(CLI::App& app, Console& console);
void AddRunCommand(CLI::App& app, Console& console);
void AddDrawCommand(CLI::App& app);
void AddScopeCommand(CLI::App& app, Console& console);
void AddSpeedCommand(CLI::App& app, Console& console);
void AddBodeCommand(CLI::App& app, Console& console);
void AddSweepCommand(CLI::App& app, Console& console);
void AddMeterCommand(CLI::App& app, Console& console);
void AddMeasureCommand(CLI::App& app, Console& console);
void AddStudyCommand(CLI::App& app, Console& console);
void AddLinearizeCommand(CLI::App& app, Console& console);
void AddLocusCommand(CLI::App& app, Console& console);
void AddTuneCommand(CLI::App& app, Console& console);
void AddDiagramCommand(CLI::App& app, Console& console);
void AddCheckCommand(CLI::App& app, Console& console);
void AddConvertCommand(CLI::App& app, Console& console);
void AddCompleteCommand(CLI::App& app, Console& console);

}  // namespace torvane::cli
