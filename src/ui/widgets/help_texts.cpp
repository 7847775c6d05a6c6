#include "ui/widgets/help_texts.h"

#include <algorithm>

namespace torvane {

namespace {

struct Entry {
  std::string_view Control;
  const char* Text;
};

constexpr Entry Entries[] = {
    // The control strip.
    {"SBRun",
     "Runs the model from where it stands. Scope and generator can be changed while it runs, and "
     "constants too."},
    {"SBStop", "Stops the model. The traces and the time stay; Run goes on from there."},
    {"LTime", "The simulated time that has passed since the model was chosen, in seconds."},
    {"CmBPace",
     "How fast simulated time passes: as fast as the computer can, as in reality, or in slow "
     "motion, which draws the traces as they grow. What is simulated is the same at every pace."},
    {"ModelCmB",
     "The control loops that there are. Choosing one replaces the present model, after a question "
     "when something has not been saved."},
    {"SpeedButton1",
     "Loads constants and instruments from a model file, and the model that the file names."},
    {"SBSave", "Saves constants and instruments to the present model file."},
    {"SBUndo", "Takes back the last change of a constant or of an instrument's setting."},
    {"SBRedo", "Makes the change again that was undone last."},
    {"SBShowModelBMP",
     "Shows the block diagram of the model: where its signals and constants are in the loop."},
    {"BShowModelTXT",
     "Tells what the model shows, what its constants mean and which experiments to try."},
    // The scope.
    {"PBScreen",
     "The signals against time, or against another signal. The right mouse button offers to save, "
     "copy or print the picture and the data; cursors are dragged along."},
    {"SGConsts",
     "The constants of the model. Type to change the selected value, turn it by the wheel or by a "
     "drag, finely with Shift, or double-click it for a window with steps and a slider. Changes "
     "count at once, also while the model runs."},
    {"PageScales", "Shows the controls for the scales and offsets of both axes."},
    {"PageTrigger", "Shows the controls that decide when a screen starts."},
    {"PageMeasure", "Shows cursors, measures, kept traces, export and print."},
    {"CBSingleShot",
     "Captures one screen, stops the model and holds the screen. Run captures the next one."},
    {"CBStopModel",
     "Stops the model whenever a screen is full. Run goes on, and the scope with it."},
    {"TriggeredP", "Lights up when an event has started a screen."},
    {"SBHide", "Hides the controls below, so that the screen has the window to itself."},
    {"CmBVertChan",
     "The signal whose scale and offset stand here. A double click shows or hides its trace."},
    {"CBVertShow", "Shows or hides the trace of this signal. At most eight traces are shown."},
    {"BVertZero", "Puts the zero of the trace on the centre line."},
    {"BVertAuto",
     "Chooses the scale at which the larger of the trace's extremes reaches the edge, with zero in "
     "the centre."},
    {"BVertFill",
     "Chooses scale and offset so that the trace takes the whole height of the screen."},
    {"BVertAdd", "Opens the lists of all signals, to choose those that are shown."},
    {"BVertRemove", "Opens the lists of all signals, to choose those that are shown."},
    {"EVertScale",
     "How much of the signal one division of the screen stands for. A negative scale turns the "
     "trace upside down."},
    {"BVScaleDown", "Makes the trace larger: the next lower scale of 1, 2, 5, 10."},
    {"BVScaleUp", "Makes the trace smaller: the next higher scale of 1, 2, 5, 10."},
    {"BBVertScaleSign", "Turns the trace upside down."},
    {"EVertOffset",
     "What is added to the signal before it is drawn: it moves the trace up, or down when it is "
     "negative."},
    {"BVOffsetDown", "Moves the trace by one division."},
    {"BVOffsetUp", "Moves the trace by one division."},
    {"BVertOffsetSign", "Moves the trace as far to the other side of the centre line."},
    {"CmBHorizChan",
     "What the X axis shows: the time or, for a curve of one signal against another, any signal."},
    {"BHorizZero", "Puts the zero of the X axis in the centre of the screen."},
    {"BHorizAuto", "Chooses the time base that shows two periods of the command."},
    {"EHorizScale",
     "How much time, or of the signal on the X axis, one division of the screen stands for."},
    {"BHorizScaleDown", "Spreads the picture: the next lower scale of 1, 2, 5, 10."},
    {"BHorizScaleUp", "Compresses the picture: the next higher scale of 1, 2, 5, 10."},
    {"BBHorizScaleSign", "Turns the picture from left to right; only with a signal on the X axis."},
    {"EHorizOffset",
     "What is added to the signal on the X axis before it is drawn. The time always begins at the "
     "left edge."},
    {"BHorizOffsetDown", "Moves the picture sideways by one division."},
    {"BHorizOffsetUp", "Moves the picture sideways by one division."},
    {"BBHorizOffsetSign", "Moves the picture as far to the other side of the centre."},
    {"RBTrigCont",
     "Starts a screen as soon as the last one is full, without waiting for an event."},
    {"RBTrigAuto",
     "Waits for an event, but starts a screen by itself when none comes for about two screens."},
    {"RBTrigNormal", "Starts a screen on an event only, and keeps the last screen until then."},
    {"CmBTrigSource",
     "The signal that is watched for events. Step responses are measured from its step."},
    {"RBTrigPos", "An event is the signal rising through the level."},
    {"RBTrigNeg", "An event is the signal falling through the level."},
    {"ETrigLevel", "The value through which the source must pass for an event."},
    {"ETrigPosition", "How much of the screen shows what was before the event, in per cent."},
    {"CBTrigInitDelay",
     "Lets events count only after a time of the run, so that a start is over before the first "
     "screen."},
    {"ETrigTInitDelay", "The time of the run before which no event counts, in seconds."},
    {"CBTrigCountEvents", "Lets a screen start on the n-th event only."},
    {"ETrigNumEvents", "How many events it takes to start a screen."},
    {"CBTrigDelayAfter", "Lets a screen start some time after its event, to see what comes later."},
    {"ETrigTDelayAfter", "The time from the event to the start of the screen, in seconds."},
    {"CBTrigRoll",
     "Lets a full screen scroll on instead of starting anew, in the modes Cont and Auto."},
    {"SBNoCursors", "Takes the cursors off the screen."},
    {"SBOneCursor", "Puts one cursor on the screen and shows the value of each trace there."},
    {"SBTwoCursors",
     "Puts two cursors on the screen and shows the differences between them, and the time from one "
     "to the other. Math measures between them."},
    {"SBMath",
     "Shows mean, RMS and extremes of each trace, and overshoot, rise, settling and delay of its "
     "response to the trigger's source."},
    {"SBScaleDisplay", "Shows the scales and offsets of the traces under the screen."},
    {"BKeep",
     "Keeps the present traces as thin lines behind the live ones, so that two tunings can be "
     "compared. Math shows the measures of both."},
    {"BClearKept", "Takes the kept traces off the screen."},
    {"BExport",
     "Saves the picture as PNG, SVG or PDF or the data as CSV, or copies either to the clipboard."},
    {"PrintB",
     "Prints the screen with its title, its scales and the date, on paper or into a file."},
    {"SGCursors",
     "The value of each trace at the cursor, or its difference from the earlier cursor to the "
     "later one."},
    {"LCursorTime", "The time between the cursors, and the frequency whose period it is."},
    {"SGMath",
     "Measures of the displayed traces over the screen, or between two cursors. \"Unavailable\" "
     "stands where there is no step to measure, or no end of it on the screen."},
    // The generator.
    {"CmBWaveform", "The form of the command. A double click takes the next one."},
    {"EFreqHz", "How often the waveform repeats in a second."},
    {"SBFreqDown", "Makes the waveform slower by a step."},
    {"SBFreqUp", "Makes the waveform faster by a step."},
    {"EAmplitude",
     "How far the waveform goes to either side of its offset, in the units of the model's "
     "command."},
    {"SBAmplitudeDown", "Makes the waveform smaller by a step."},
    {"SBAmplitudeUp", "Makes the waveform larger by a step."},
    {"BAmpSign", "Turns the waveform upside down."},
    {"EOffset", "The value about which the waveform moves."},
    {"SBOffsetDown", "Lowers the waveform by its amplitude."},
    {"SBOffsetUp", "Raises the waveform by its amplitude."},
    {"BOffsetSign", "Moves the waveform as far to the other side of zero."},
    {"EPhaseDeg", "How far into its period the waveform is at time 0, in degrees."},
    {"SBPhaseDown", "Shifts the waveform back by an eighth of its period."},
    {"SBPhaseUp", "Shifts the waveform ahead by an eighth of its period."},
    {"BPhase", "Shifts the waveform the other way."},
    {"EDutyCycle", "The share of its period for which a pulse is high, in per cent."},
    {"SBDutyCycleDown", "Makes pulses shorter by a tenth of the period."},
    {"SBDutyCycleUp", "Makes pulses longer by a tenth of the period."},
    // The window that adjusts a constant.
    {"EValue",
     "The value of the constant. What is typed counts after Enter and is held to the limits "
     "below."},
    {"LUnits",
     "The unit of the value. A double click sets the value to zero, or to the limit nearest to "
     "it."},
    {"BChgSign", "Changes the sign of the value."},
    {"BBDown", "Lowers the value to about a half, along 1, 2, 5, 10."},
    {"BBNudgeDown", "Lowers the value by about a fifth."},
    {"BBDinkyNudgeDown", "Lowers the value by about a twenty-fifth."},
    {"BBDinkyNudgeUp", "Raises the value by about a twenty-fifth."},
    {"BBNudgeUp", "Raises the value by about a fifth."},
    {"BBUp", "Raises the value to about double, along 1, 2, 5, 10."},
    {"SLValue",
     "Moves the value between its limits: evenly, or by decades where they are far apart."},
    {"BBOK", "Closes the window and keeps the value."},
    {"BBCancel", "Takes back what this window has changed, and closes it."},
    // Choice of channels.
    {"LBShowing",
     "The signals whose traces are on the screen once this window is left by Okay. A double click "
     "takes one off."},
    {"LBNotShowing", "The signals without a trace. A double click puts one on the screen."},
    {"BShowSelected", "Puts the selected signals on the screen."},
    {"BSelectAll", "Puts all signals on the screen; it has room for eight."},
    {"BUnshowSelected", "Takes the selected signals off the screen."},
    {"BUnshowAll", "Takes all signals off the screen."},
    {"BOkay", "Shows the channels as they are listed."},
    {"BCancel", "Leaves the channels as they were."},
    // The model.
    {"IPicture", "The block diagram of the model."},
    {"MText", "The description of the model."},
};

}  // namespace

const char* HelpText(std::string_view control) {
  const auto* const entry = std::find_if(std::begin(Entries), std::end(Entries),
                                         [&](const Entry& e) { return e.Control == control; });
  return entry == std::end(Entries) ? nullptr : entry->Text;
}

}  // namespace torvane
