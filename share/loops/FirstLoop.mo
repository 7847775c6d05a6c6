model FirstLoop "A PI controller on a motor's speed"
  // A loop of your own is a text like this one. Change it, and apply it with Ctrl+Return; what is
  // wrong is told at its line.
  //
  //   Command -(+)-> Error -> KP (1 + KI/s) -> drive -> Torque -> 1/(J s) -> Speed
  //            -^------------------------------------------------------------+

  // Parameters are what can be changed while the loop runs: unit, limits, value, what it is.
  parameter Real J(unit = "kg.m2", min = 1e-5, max = 1) = 0.002 "Inertia";
  parameter Real KP(unit = "N.m.s/rad", min = 0, max = 100) = 0.5 "Proportional gain";
  parameter Real KI(unit = "1/s", min = 0, max = 1000) = 50
    "Integral gain: below it the integral takes over";

  // Signals are what scope, meters and analysers are offered. They are computed in the unit and
  // shown in the displayUnit; each annotation says how the scope begins with them.
  Real Command(unit = "rad/s", displayUnit = "RPM") = source.y * (2 * Modelica.Constants.pi / 60)
    "Wanted speed" annotation(__Torvane(scale = 10, show = true));
  Real Error(unit = "rad/s", displayUnit = "RPM") = Command - Speed "What is missing";
  Real Speed(unit = "rad/s", displayUnit = "RPM") "Speed of the motor"
    annotation(__Torvane(scale = 10, show = true));
  Real Torque(unit = "N.m") = drive.y "What turns the motor" annotation(__Torvane(scale = 5));

  // Blocks are declared with their inputs and read as drive.y. The command comes from a generator,
  // in whose place the analysers excite the loop.
  Torvane.Sources.Command source(waveform = Torvane.Waveform.Square, frequency = 10,
    amplitude = 20) annotation(__Torvane(name = "Command Source"));
  Torvane.Continuous.LowPass2 drive(u = KP * (Error + KI * integral), f = 300);
protected
  // What stands behind "protected" is not offered.
  Real integral "Integral of Error";
equation
  // In any order: they are sorted by what they need.
  der(integral) = Error;
  der(Speed) = Torque / J;
  annotation(
    // The solver's step, seconds.
    experiment(Interval = 1e-5),
    __Torvane(
      // Seconds a division on the scope.
      scope(division = 0.02),
      // The analysers' pairs; margins are read of the one whose kind is "open".
      responses(
        Closed(from = Command, to = Speed),
        Open(from = Error, to = Speed, kind = "open"))));
end FirstLoop;
