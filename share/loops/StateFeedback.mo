model StateFeedback "State feedback with an observer on a motor's position"
  // Only the position is measured; an observer estimates position and speed for the feedback.
  constant Real pi = Modelica.Constants.pi;
  parameter Real f(unit = "Hz", min = 0.1, max = 100) = 5 "Natural frequency of the loop";
  parameter Real zeta(min = 0.1, max = 5) = 0.8 "Damping of the loop";
  parameter Real fObserver(unit = "Hz", min = 0.1, max = 1000) = 25
    "Natural frequency of the observer";
  final parameter Real w(unit = "1/s") = 2 * pi * f;
  final parameter Real wo(unit = "1/s") = 2 * pi * fObserver;

  Real Command = source.y "Wanted position" annotation(__Torvane(scale = 0.5, show = true));
  Real Position "Position of the motor" annotation(__Torvane(scale = 0.5, show = true));
  Real Speed "Speed of the motor" annotation(__Torvane(scale = 10));
  Real EstPosition "Estimated position" annotation(__Torvane(scale = 0.5));
  Real EstSpeed "Estimated speed" annotation(__Torvane(scale = 10));
  Real Acceleration "What the feedback asks for" annotation(__Torvane(scale = 500));
  Real Disturbance = disturbance.y "Acceleration from outside" annotation(__Torvane(scale = 100));

  Torvane.Sources.Command source(waveform = Torvane.Waveform.Square, frequency = 1,
    amplitude = 1) annotation(__Torvane(name = "Command Source"));
  Torvane.Sources.Generator disturbance(waveform = Torvane.Waveform.DC, amplitude = 1)
    annotation(__Torvane(name = "Disturbance Source"));
protected
  Real innovation "What the observer did not expect";
equation
  Acceleration = w * w * (Command - EstPosition) - 2 * zeta * w * EstSpeed;
  der(Position) = Speed;
  der(Speed) = Acceleration + Disturbance;
  innovation = Position - EstPosition;
  der(EstPosition) = EstSpeed + 2 * 0.8 * wo * innovation;
  der(EstSpeed) = Acceleration + wo * wo * innovation;
  annotation(
    experiment(Interval = 1e-4),
    __Torvane(
      scope(division = 0.1),
      responses(Closed(from = Command, to = Position)),
      analysers(amplitude = 0.1, sweepTo = 100)));
end StateFeedback;
