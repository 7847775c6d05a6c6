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
    // An experiment.
    {"MExperiment",
     "What the experiment asks and what there is to do. A click on a value sets it; what is set "
     "has "
     "a tick before it. Behind each answer stands what the instruments read of it, with a tick "
     "where that is as expected, and fainter when it was read with other values."},
    {"SBExperimentRun", "Runs the model, or stops it; an experiment with an analyser is measured."},
    {"SBPreviousExperiment", "Sets up the experiment before this one."},
    {"SBNextExperiment",
     "Sets up the model's next experiment, after an offer to save where you have changed what this "
     "one does not propose."},
    // The scope.
    {"PBScreen",
     "The signals against time, or against another signal. Numbered flags on the left stand at the "
     "traces' zeros and, with a T, at the trigger's level and above at its position: drag them. "
     "The wheel scales the selected channel, with Ctrl the time base; a click on a trace selects "
     "it; cursors are dragged along. The right mouse button offers to save, copy or print."},
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
    {"LTrigState",
     "What the trigger is doing: it waits for an event, has had one, lets screens follow each "
     "other "
     "by themselves, or the model is stopped."},
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
    {"BHorizAuto",
     "Chooses the time base that shows two periods of the command; with a signal as X axis, the "
     "scale at which what is on the screen just reaches its left or right edge, around zero."},
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
     "response to the trigger's source; where one cannot be told, why."},
    {"SBScaleDisplay", "Shows the scales and offsets of the traces under the screen."},
    {"BKeep",
     "Keeps the present traces as thin lines behind the live ones, so that two tunings can be "
     "compared; the legend tells the constants that differ. Math shows the measures of both. Its "
     "arrow loads traces that a bench has measured, from a CSV file of time and signals."},
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
    {"BPlayFile",
     "Plays a file of time and values: once at a frequency of 0, else anew with each period. "
     "Amplitude and offset scale and move it. The next waveform that is chosen ends that."},
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
    // The analysers.
    {"RunGroup/SBRun",
     "Takes a measurement while the model runs: the excitation takes the generator's place until "
     "it "
     "is done and the button comes up. Pressed before, it stops the measurement."},
    {"SBSetup",
     "Opens the settings of the measurement: sample time, length, delays and excitation."},
    {"CBSpectrum",
     "Shows what frequencies the output holds by itself, in place of its response to the input."},
    {"CBBinary",
     "Excites the model with a sequence of two levels in place of evenly spread values."},
    {"CBUseGenFilter", "Leaves out the filter that smoothes the excitation."},
    {"SBHideRows",
     "Hides the controls of traces, cursors and axes, so that the plot has the window to itself."},
    {"CmBInput", "The signal that the response starts from."},
    {"CmBOutput", "The signal whose response is measured."},
    {"SBButton1", "Measures the pair of signals that the button names."},
    {"SBButton2", "Measures the pair of signals that the button names."},
    {"SBButton3", "Measures the pair of signals that the button names."},
    {"SBButton4", "Measures the pair of signals that the button names."},
    {"SBButton5", "Measures the pair of signals that the button names."},
    {"SBButton6", "Measures the pair of signals that the button names."},
    {"SBButton7", "Measures the pair of signals that the button names."},
    {"SBButton8", "Measures the pair of signals that the button names."},
    {"SBButton9", "Measures the pair of signals that the button names."},
    {"SBButton10", "Measures the pair of signals that the button names."},
    {"CBColorCurrent", "Shows or hides the response measured last."},
    {"CBColor1", "Shows or hides the response in memory 1."},
    {"CBColor2", "Shows or hides the response in memory 2."},
    {"CBColor3", "Shows or hides the response in memory 3."},
    {"CBColor4", "Shows or hides the response in memory 4."},
    {"SBMemory",
     "Saves the response into a memory, here or in the model's other analyser, to compare later "
     "ones with it, loads one from there or from a file, and chooses which one the cursors read."},
    {"PBPlot",
     "Gain and phase against frequency. Drag a cursor, or move it with the arrow keys, the second "
     "one with Shift; the menu of the right mouse button saves and shows measurements. A Nyquist "
     "or "
     "Nichols plot is moved with the mouse; the wheel zooms, a double click shows all again."},
    {"EFreqMin", "The frequency at the left edge of the plot."},
    {"FreqMinDown", "Lets the plot begin at a lower frequency."},
    {"FreqMinUp", "Lets the plot begin at a higher frequency."},
    {"EFreqMax", "The frequency at the right edge of the plot."},
    {"FreqMaxDown", "Lets the plot end at a lower frequency."},
    {"FreqMaxUp", "Lets the plot end at a higher frequency."},
    {"LFreqAuto", "Shows all frequencies of the measurement."},
    {"CursorGroup/SBNoCursors", "Takes the cursors off the plot."},
    {"CursorGroup/SBOneCursor", "Puts one cursor on the plot, at which gain and phase are read."},
    {"CursorGroup/SBTwoCursors",
     "Puts two cursors on the plot and shows what changes from one to the other."},
    {"CmBFindType",
     "What Find looks for: a gain such as -3 dB, a phase such as -90 degrees, or the greatest or "
     "least gain."},
    {"SBFind",
     "Moves the cursor to the next frequency at which the response has what is chosen beside it."},
    {"PageGain", "Shows the scale and offset of the gain."},
    {"PagePhase", "Shows the scale and offset of the phase."},
    {"EGainScale", "How many decibels one division of the plot stands for."},
    {"BGainScaleDown", "Makes the gain's trace larger."},
    {"BGainScaleUp", "Makes the gain's trace smaller."},
    {"EGainOffset", "What is added to the gain before it is drawn, in decibels."},
    {"BGainOffsetDown", "Moves the gain's trace down by a division."},
    {"BGainOffsetUp", "Moves the gain's trace up by a division."},
    {"BGainZero", "Draws the gain without an offset."},
    {"ENyquistScale",
     "What one division of both axes of a Nyquist plot stands for; 0 fits it to the traces."},
    {"BNyquistScaleDown", "Shows less of the plane, larger."},
    {"BNyquistScaleUp", "Shows more of the plane, smaller."},
    {"ENyquistReal", "The real part in the middle of the plot: -1 looks at the critical point."},
    {"ENyquistImaginary", "The imaginary part in the middle of the plot."},
    {"BNyquistFit", "Shows all of the traces again, around zero."},
    {"EPhaseScale", "How many degrees one division of the plot stands for."},
    {"BPhaseScaleDown", "Makes the phase's trace larger."},
    {"BPhaseScaleUp", "Makes the phase's trace smaller."},
    {"EPhaseOffset", "What is added to the phase before it is drawn, in degrees."},
    {"BPhaseOffsetDown", "Moves the phase's trace down by a division."},
    {"BPhaseOffsetUp", "Moves the phase's trace up by a division."},
    {"BPhaseZero", "Draws the phase without an offset."},
    {"CmBLocus",
     "Draws how the poles move with that constant, a decade to either side of its value as far as "
     "its limits go; the crosses are where they stand."},
    {"SBAllPoles", "Shows all poles again, after the wheel or the mouse has moved the plane."},
    {"SGPoles",
     "Each pole, or pair of them, with its natural frequency and its damping; a pole that an "
     "integrator or a delay of a sample makes is called that."},
    {"MITune",
     "Looks for the constants with which the loop meets what is required of a step of its command "
     "and of its margins, and is best in one measure. The model goes on meanwhile."},
    {"CmBTuneCommand", "The signal that the generator steps, which is to be followed."},
    {"CmBTuneResponse",
     "The signal that follows it, of which overshoot, settling and so on are told."},
    {"SGVary",
     "The model's constants. Those that are on are varied between the limits beside them; Log "
     "spreads what is tried evenly over decades. Space switches, typing writes a limit."},
    {"SGRequire",
     "What is measured of each tuning, with the bounds that it is to keep: type a number for at "
     "most, at least or both. Beside them stands what the best tuning so far has."},
    {"CmBTuneBest",
     "Of all tunings that keep the bounds the one is wanted that is best in this: the largest "
     "bandwidth or margin, the smallest of anything else."},
    {"ETuneUntil",
     "How long a run may go on after the step; it ends earlier when the response stands."},
    {"ETuneRuns",
     "How many tunings are tried at most: half of them all over the limits, the others about the "
     "best of these. The same search finds the same tuning."},
    {"BTuneStart", "Begins the search, in a process of its own, with the model as it is now."},
    {"BTuneStop", "Ends the search after the run in progress. The best so far stays."},
    {"BTuneApply", "Gives the model the constants of the best tuning. One undo takes them back."},
    {"BTuneSave", "Saves the model, as it was when the search began, with the best tuning."},
    {"SBMargins",
     "Reads bandwidth and peaking off a closed loop's response, and margins off an open loop's; "
     "the "
     "places are marked on the plot."},
    {"SBView",
     "Shows the responses as a Bode, Nyquist or Nichols plot, as the open loop that belongs to a "
     "closed one, with the phase unwrapped, with the group delay, or with what theory says "
     "behind them."},
    {"SGMargins",
     "What the trace of the cursors says: of a closed loop how far it follows its command, of an "
     "open one how far the closed loop is from instability."},
    {"CmBMarginsAs",
     "Takes the response for an open loop, whose margins are read, or for a closed one, of which "
     "bandwidth and peaking are."},
    {"SGXferCursors",
     "Frequency, gain and phase at each cursor, and their change from the first to the second."},
    {"RBColorCurrent", "Lets the cursors read the response measured last."},
    {"RBColor1", "Lets the cursors read memory 1."},
    {"RBColor2", "Lets the cursors read memory 2."},
    {"RBColor3", "Lets the cursors read memory 3."},
    {"RBColor4", "Lets the cursors read memory 4."},
    // The settings of a measurement.
    {"EtSample",
     "The time from one sample to the next. Half of its inverse is the highest frequency that can "
     "be measured."},
    {"BtSampleDown", "Samples more often: higher frequencies, and a shorter record."},
    {"BtSampleUp", "Samples less often: lower frequencies, and a longer record."},
    {"EOrder",
     "The record has two to this power samples. One more halves the lowest frequency and doubles "
     "the time."},
    {"BOrderDown", "Halves the record."},
    {"BOrderUp", "Doubles the record."},
    {"EtStartDelay", "The time for which the model settles before the record begins."},
    {"BtStartDelayDown", "Gives the model less time to settle."},
    {"BtStartDelayUp", "Gives the model more time to settle."},
    {"EtEndDelay",
     "The last part of the record, in which the excitation rests so that the response can die "
     "away."},
    {"BtEndDelayDown", "Lets the excitation last longer."},
    {"BtEndDelayUp", "Lets the excitation end earlier."},
    {"TZelXferSetupF/EAmplitude",
     "How far the excitation goes from least to greatest, in the units of the model's command."},
    {"TZelXferSetupF/EOffset", "The value about which the excitation moves."},
    {"EAverages",
     "How many measurements are averaged into one. More take longer, are less noisy and tell the "
     "coherence: where it is near 1, gain and phase can be trusted."},
    {"BAveragesDown", "Averages fewer measurements, in less time."},
    {"BAveragesUp", "Averages more measurements, which lowers the noise."},
    {"EStartFreq", "The frequency at which the sweep begins."},
    {"BStartFreqDown", "Begins the sweep at a lower frequency."},
    {"BStartFreqUp", "Begins the sweep at a higher frequency."},
    {"EEndFreq", "The frequency at which the sweep ends."},
    {"BEndFreqDown", "Ends the sweep at a lower frequency."},
    {"BEndFreqUp", "Ends the sweep at a higher frequency."},
    {"EStepsPerDecade", "How many frequencies are measured for each factor of ten."},
    {"BStepsPerDecadeDown", "Measures fewer frequencies, in less time."},
    {"BStepsPerDecadeUp", "Measures more frequencies, in more time."},
    {"ESettleTime",
     "The time for which the model settles at each frequency before it is measured."},
    {"BSettleTimeDown", "Gives the model less time to settle."},
    {"BSettleTimeUp", "Gives the model more time to settle."},
    {"EMeasurementTime",
     "Divided by the frequency it gives the periods for which each frequency is measured, at least "
     "one."},
    {"BMeasurementTimeDown", "Measures each frequency for a shorter time."},
    {"BMeasurementTimeUp",
     "Measures each frequency for longer, which makes the result more exact."},
    {"TZelSweptDSASetupF/EAmplitude",
     "How far the sine goes to either side, in the units of the model's command."},
    {"TZelSweptDSASetupF/EOffset", "The value about which the sine moves."},
    // Meters.
    {"TZelMeterF/EValue", "What the meter reads of its variable."},
    {"EUnits", "The unit of the reading."},
    {"SBShowSetup", "Shows or hides the settings of the meter."},
    {"EHarmonicAngle", "How far the harmonic is ahead, in degrees."},
    {"CmBVariable", "The signal that is measured."},
    {"RBRMS", "Measures the root of the mean square: how large the signal is, whatever its sign."},
    {"RBAverage", "Measures the mean of the signal."},
    {"RBHarmonic", "Measures how much of one frequency the signal has, and with what phase."},
    {"RBCorr", "Measures how much of a second signal the measured one follows, as a gain."},
    {"CmBCorrVar", "The second signal of the correlation."},
    {"RBDC", "Measures the signal as it is, its mean included."},
    {"RBAC", "Takes the mean off before the signal is measured."},
    {"ETSample", "The time from one sample of the meter to the next, in seconds."},
    {"ELpf",
     "Smoothes the readings of RMS, average and correlation: the lower, the calmer and slower, in "
     "Hz."},
    {"EACHpf", "How slow a change AC still lets through, in Hz."},
    {"CBUseExcitation",
     "Adds a sine of the meter's own to the model's command, to measure what it does."},
    {"EExcitationMag",
     "How far that sine goes to either side, in the units of the model's command."},
    {"EExcitationOff", "The value about which that sine moves."},
    {"EExcitationMult", "How many times the harmonic's frequency that sine has."},
    {"EHarmonicFreq", "The frequency that is measured, in Hz."},
    {"BHarmDown", "Lowers the frequency by about a fifth."},
    {"BHarmNudgeDown", "Lowers the frequency by a hundredth."},
    {"BHarmDinkyNudgeDown", "Lowers the frequency by a thousandth."},
    {"BHarmDinkyNudgeUp", "Raises the frequency by a thousandth."},
    {"BHarmNudgeUp", "Raises the frequency by a hundredth."},
    {"BHarmUp", "Raises the frequency by about a fifth."},
    {"ETWindow", "How long the harmonic is measured, in seconds; whole periods are taken."},
    {"CBHarmonicXfer",
     "Divides by the same harmonic of a second signal, which gives the response from that signal "
     "to this one."},
    {"CmBHarmonicXferVar", "The second signal, from which the response starts."},
    {"CBUseDB", "Shows that response in decibels."},
    // The model.
    {"IPicture", "The block diagram of the model."},
    {"IDiagram",
     "The block diagram of the model, with present values. A click on a signal shows or hides its "
     "trace, a right click gives it to an analyser or a meter; a click on a constant edits it. "
     "With the keyboard: arrows, Enter and the menu key."},
    {"MText", "The description of the model."},
    // Own loops.
    {"MLoop",
     "The text of the loop. What is wrong with it is marked at its line and told below; "
     "Ctrl+Return "
     "makes it the loop that runs, Ctrl+S saves it."},
    {"SBApplyLoop",
     "Makes the text the loop that runs. Constants, scope and analysers keep what you have changed "
     "of them, as far as the loop still has it; with an error in the text the model goes on as it "
     "is."},
    {"SBSaveLoop", "Saves the text of the loop to its file."},
    {"SBSaveLoopAs", "Saves the text of the loop to another file."},
    {"LBProblems",
     "What is wrong with the text or doubtful in it, and what was not kept when it was applied. A "
     "click goes to the place."},
    {"SBReadAgain", "Takes what the file holds now, and runs it where the loop ran."},
    {"SBIgnoreFile", "Goes on with the text as it is here; saving it replaces the file."},
    {"ENewLoop", "The new loop's name, which its file has too."},
    {"LBTemplates", "The loops whose texts a new one can begin with."},
};

}  // namespace

const char* HelpText(std::string_view control) {
  const auto* const entry = std::find_if(std::begin(Entries), std::end(Entries),
                                         [&](const Entry& e) { return e.Control == control; });
  return entry == std::end(Entries) ? nullptr : entry->Text;
}

}  // namespace torvane
