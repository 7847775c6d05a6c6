model AnalogPI "Continuous PI loop around an integrating plant: the twin of 3-1"
  // Command - Feedback = Error -> KP (1 + KI/s) -> limit -> Control -> power converter -> Power
  // Power -> G/s -> Response -> filter -> Feedback
  parameter Real KP(min = 0, max = 1000000) = 0.6 "Proportional gain: Control per Error";
  parameter Real KI(min = 0, max = 10000) = 100
    "Integral gain: below it the integral takes over (rad/s)";
  parameter Real G(min = 0.1, max = 100000) = 500
    "Gain of the plant: Response rises by G times Power a second";
  parameter Real PowerHz(unit = "Hz", min = 50, max = 2000) = 800
    "Bandwidth of the power converter" annotation(__Torvane(name = "Power"));
  parameter Real FeedbackHz(unit = "Hz", min = 50, max = 2000) = 350
    "Bandwidth of the feedback filter" annotation(__Torvane(name = "Feedback"));
  parameter Real Sat(min = 1, max = 10000) = 100 "Largest magnitude of Control";
  parameter Real 'Wind-up'(unit = "%", min = 100, max = 10000) = 120
    "Level past which the integral gives way, as a part of Sat";
  final parameter Real windUp = Sat * 'Wind-up' * 0.01;

  Real Command "Command of the loop"
    annotation(__Torvane(scale = 10, offset = 20, show = true));
  Real Error "Error: Command less Feedback" annotation(__Torvane(scale = 10));
  Real Power "Output of the power converter" annotation(__Torvane(scale = 10));
  Real Feedback "Response as it is measured" annotation(__Torvane(scale = 10));
  Real Control "Output of the controller, limited to Sat"
    annotation(__Torvane(scale = 10, offset = -20, show = true));
  Real Response "Output of the plant"
    annotation(__Torvane(scale = 10, offset = 20, show = true));
  Real ErrorInt "Integral of Error" annotation(__Torvane(scale = 0.1));

  Torvane.Continuous.LowPass2 powerConverter(u = Control, f = PowerHz, zeta = 0.707);
  Torvane.Continuous.LowPass2 feedbackFilter(u = Response, f = FeedbackHz, zeta = 0.707);
  // As in 3-1, the error sees the feedback of the evaluation before.
  Torvane.Continuous.Memory measured(u = Feedback);
  Torvane.Sources.Command source(waveform = Torvane.Waveform.Square, frequency = 25,
    amplitude = 10) annotation(__Torvane(name = "MainWaveGen"));
protected
  Real unlimited "What the controller asks for";
equation
  Command = source.y;
  Error = Command - measured.y;
  der(ErrorInt) = Error;
  unlimited = (KI * ErrorInt + Error) * KP;
  Control = if unlimited > Sat then Sat elseif unlimited < -Sat then -Sat else unlimited;
  // Anti-wind-up: the integral is set to what would hold the output at the wind-up level.
  when unlimited > windUp and KI > 0 and ErrorInt > (windUp / KP - Error) / KI then
    reinit(ErrorInt, (windUp / KP - Error) / KI);
  end when;
  when unlimited < -windUp and KI > 0 and ErrorInt < (-windUp / KP - Error) / KI then
    reinit(ErrorInt, (-windUp / KP - Error) / KI);
  end when;
  Power = powerConverter.y;
  der(Response) = G * Power;
  Feedback = feedbackFilter.y;
  annotation(
    experiment(Interval = 1e-5),
    __Torvane(
      responses(
        Closed(from = Command, to = Response),
        Open(from = Error, to = Feedback, kind = "open")),
      analysers(amplitude = 2)));
end AnalogPI;
