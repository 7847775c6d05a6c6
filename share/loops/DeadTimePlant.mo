model DeadTimePlant "Integral control of a plant with dead time"
  // Command - Response = Error -> K/s -> Flow -> late by T -> Response
  parameter Real K(unit = "1/s", min = 0, max = 1000) = 10 "Gain of the controller";
  parameter Real T(unit = "s", min = 0, max = 1) = 0.05 "Dead time of the plant";

  Real Command = source.y "What is wanted" annotation(__Torvane(scale = 0.5, show = true));
  Real Error = Command - Response "What is missing" annotation(__Torvane(scale = 0.5));
  Real Flow "What the controller lets in" annotation(__Torvane(scale = 0.5));
  Real Response = delay(Flow, T) "What arrives"
    annotation(__Torvane(scale = 0.5, show = true));

  Torvane.Sources.Command source(waveform = Torvane.Waveform.Square, frequency = 0.25,
    amplitude = 1) annotation(__Torvane(name = "Command Source"));
equation
  der(Flow) = K * Error;
  annotation(
    experiment(Interval = 1e-4),
    __Torvane(
      scope(division = 0.2),
      responses(
        Closed(from = Command, to = Response),
        Open(from = Error, to = Response, kind = "open")),
      analysers(amplitude = 0.5, sweepTo = 20, samplePeriod = 0.002, order = 14)));
end DeadTimePlant;
