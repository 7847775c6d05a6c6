model PIPlus "Sampled PI+ velocity loop without calculation delay: the twin of 2-1"
  // vC -> PI+ -> iC -> current loop -> iF -> KT -> tM -> 1/(J s) -> vM -> 1/s -> pM
  // pM -> change per sample -> vF, fed back
  parameter Real KVP(min = 0, max = 100) = 0.72
    "Proportional gain of the velocity loop (Amps per rad/s)";
  parameter Real KVI(min = 0, max = 10000) = 100
    "Integral gain of the velocity loop: below it the integral takes over (rad/s)";
  parameter Real KVFR(unit = "%", min = -100, max = 200) = 65
    "Share of the command that bypasses the command filter: 100 is plain PI";
  parameter Real KT(unit = "Nm/Amp", min = 0.1, max = 10) = 1 "Torque constant of the motor";
  parameter Real J(unit = "kg-m^2", min = 0.0001, max = 0.01) = 0.002
    "Inertia of motor and load";
  parameter Real TSample(unit = "sec", min = 1e-5, max = 0.01) = 0.00025
    "Time between two samples";

  Real vC(unit = "rad/s", displayUnit = "RPM") "Command velocity"
    annotation(__Torvane(scale = 10, show = true));
  Real vM(unit = "rad/s", displayUnit = "RPM") "Motor velocity" annotation(__Torvane(scale = 10));
  Real vE(unit = "rad/s", displayUnit = "RPM") = 0 "Not used in this loop"
    annotation(__Torvane(scale = 10));
  discrete Real vF(unit = "rad/s", displayUnit = "RPM")
    "Feedback velocity: what the controller is told"
    annotation(__Torvane(scale = 10, show = true));
  Real pM(unit = "rad", displayUnit = "Revs") "Motor position" annotation(__Torvane(scale = 0.01));
  Real pF(unit = "rad", displayUnit = "Revs") = 0 "Not used in this loop"
    annotation(__Torvane(scale = 0.01));
  Real iC(unit = "Amps") "Current command: what the controller asks for"
    annotation(__Torvane(scale = 5));
  Real iF(unit = "Amps") "Current feedback: the current that flows"
    annotation(__Torvane(scale = 5));
  Real tM(unit = "Nm") "Torque that turns the motor" annotation(__Torvane(scale = 5));

  Torvane.Sources.Command generator(waveform = Torvane.Waveform.Square, frequency = 25,
    amplitude = 20) annotation(__Torvane(name = "MainWaveGen"));
  Torvane.Discrete.PIPlus controller(u = vC, u_m = vF, kVP = KVP, kVI = KVI, kVFR = KVFR,
    samplePeriod = TSample, yMax = 20, windUp = 1.2);
  Torvane.Continuous.LowPass2 currentLoop(u = iC, f = 800, zeta = 0.707);
protected
  discrete Real pSampled(unit = "rad") "Motor position at the sample";
equation
  vC = generator.y * (6.2831852 / 60);
  when sample(0, TSample) then
    pSampled = pM;
    vF = (pSampled - pre(pSampled)) / TSample;
  end when;
  iC = controller.y;
  iF = currentLoop.y;
  tM = iF * KT;
  der(vM) = tM / J;
  der(pM) = vM;
  annotation(
    experiment(Interval = 1e-5),
    __Torvane(responses(
      Closed(from = vC, to = vF, kind = "closed", meanwhile(KVFR = 100)))));
end PIPlus;
