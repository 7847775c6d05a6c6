model OwnPID "A PID controller written as equations, on a mass with a spring"
  // Command - Position = Error -> KP + KI/s + KD s/(1 + s/N) -> Force -> mass, damper and spring
  parameter Real KP(unit = "N/m", min = 0, max = 1e6) = 400 "Proportional gain";
  parameter Real KI(unit = "N/(m.s)", min = 0, max = 1e6) = 2000 "Integral gain";
  parameter Real KD(unit = "N.s/m", min = 0, max = 1e5) = 30 "Derivative gain";
  parameter Real N(unit = "1/s", min = 1, max = 1e4) = 500 "Corner of the derivative's filter";
  parameter Real m(unit = "kg", min = 0.01, max = 100) = 1 "Mass";
  parameter Real d(unit = "N.s/m", min = 0, max = 100) = 2 "Damper";
  parameter Real c(unit = "N/m", min = 0, max = 1e4) = 50 "Spring";
  parameter Real forceMax(unit = "N", min = 1, max = 1e6) = 1000 "Largest force";

  Real Command(unit = "m") = source.y "Wanted position"
    annotation(__Torvane(scale = 0.05, show = true));
  Real Error(unit = "m") = Command - Position "What is missing"
    annotation(__Torvane(scale = 0.05));
  Real Position(unit = "m") "Where the mass is" annotation(__Torvane(scale = 0.05, show = true));
  Real Speed(unit = "m/s") "Speed of the mass" annotation(__Torvane(scale = 1));
  Real Force(unit = "N") "What the controller pushes with" annotation(__Torvane(scale = 20));

  Torvane.Sources.Command source(waveform = Torvane.Waveform.Square, frequency = 1,
    amplitude = 0.1) annotation(__Torvane(name = "Command Source"));
protected
  Real integral(unit = "N") "Integral part";
  Real filtered(unit = "m") "The error behind the derivative's filter";
  Real wanted(unit = "N") "Force without its limit";
equation
  der(filtered) = N * (Error - filtered);
  wanted = KP * Error + integral + KD * der(filtered);
  Force = max(-forceMax, min(forceMax, wanted));
  // While the force is at its limit the integral waits.
  der(integral) = if abs(wanted) > forceMax then 0 else KI * Error;
  der(Position) = Speed;
  der(Speed) = (Force - d * Speed - c * Position) / m;
  annotation(
    experiment(Interval = 1e-4),
    __Torvane(
      scope(division = 0.1),
      responses(
        Closed(from = Command, to = Position),
        Open(from = Error, to = Position, kind = "open")),
      analysers(amplitude = 0.01, sweepTo = 100)));
end OwnPID;
