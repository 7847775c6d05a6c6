model DigitalPI "Sampled PI velocity loop with encoder feedback: the twin of 4-1"
  // vC -> PI -> iC, late by TCalc -> current loop -> iF -> KT -> tM -> 1/(J s) -> vM -> 1/s -> pM
  // pM -> encoder -> pF -> change per sample -> vF, fed back, or vM itself as from a tachometer
  type Velocity = enumeration(Tach "an ideal tachometer", Encoder "differences of position");
  parameter Real KVP(min = 0, max = 1000) = 0.72
    "Proportional gain of the velocity loop (Amps per rad/s)";
  parameter Real KVI(min = 0, max = 10000) = 100
    "Integral gain of the velocity loop: below it the integral takes over (rad/s)";
  parameter Real CLoop(unit = "Hz", min = 100, max = 10000) = 800
    "Bandwidth of the current loop";
  parameter Real TSample(unit = "Sec", min = 0.0001, max = 100) = 0.00025
    "Time between two samples";
  parameter Real TCalc(unit = "%", min = 0, max = 95) = 65
    "Delay from a sample to the new current command, as a part of TSample";
  parameter Real KT(unit = "Nm/Amp", min = 0.1, max = 10) = 1 "Torque constant of the motor";
  parameter Real J(unit = "kg-m^2", min = 1e-6, max = 1) = 0.002 "Inertia of motor and load";
  parameter Velocity Source = Velocity.Tach "Where velocity comes from"
    annotation(__Torvane(name = "Feedback"));
  parameter Boolean 'Use Res?' = false "Yes: the encoder's position is cut down to whole counts";
  parameter Real Res(unit = "Lines/rev", min = 100, max = 1e10) = 1000
    "Lines of the encoder; it counts four a line";
  parameter Real 'a (Inv Trap)'(min = 0, max = 1) = 0
    "Lead of the inverse trapezoid that makes velocity of encoder positions";
  final parameter Real count(unit = "rad") = 1 / (4 * Res * (1 / 6.2831852)) "One encoder count";

  Real vC(unit = "rad/s", displayUnit = "RPM") "Command velocity"
    annotation(__Torvane(scale = 10, show = true));
  Real vM(unit = "rad/s", displayUnit = "RPM") "Motor velocity" annotation(__Torvane(scale = 10));
  Real vE(unit = "rad/s", displayUnit = "RPM") = controller.e
    "Velocity error: what the controller works on" annotation(__Torvane(scale = 10));
  discrete Real vF(unit = "rad/s", displayUnit = "RPM")
    "Feedback velocity: what the controller is told"
    annotation(__Torvane(scale = 10, show = true));
  Real pM(unit = "rad", displayUnit = "Revs") "Motor position" annotation(__Torvane(scale = 0.01));
  discrete Real pF(unit = "rad", displayUnit = "Revs") "Feedback position, as sampled"
    annotation(__Torvane(scale = 0.01));
  Real iC(unit = "Amps") = controller.y "Current command: what the controller asks for"
    annotation(__Torvane(scale = 5));
  Real iF(unit = "Amps") "Current feedback: the current that flows"
    annotation(__Torvane(scale = 5));
  Real tM(unit = "Nm") "Torque that turns the motor" annotation(__Torvane(scale = 5));

  Torvane.Sources.Command generator(waveform = Torvane.Waveform.Square, frequency = 25,
    amplitude = 20) annotation(__Torvane(name = "MainWaveGen"));
  Torvane.Discrete.PI controller(u = vC, u_m = vF, kVP = KVP, kVI = KVI, samplePeriod = TSample,
    yMax = 20, windUp = 1.2);
  Torvane.Discrete.ZeroOrderHold late(u = iC, samplePeriod = TSample,
    delay = 0.01 * TCalc * TSample);
  Torvane.Continuous.LowPass2 currentLoop(u = late.y, f = CLoop, zeta = 0.707);
protected
  discrete Real change(unit = "rad/s") "Change of position per sample";
equation
  vC = generator.y * (6.2831852 / 60);
  when sample(0, TSample) then
    pF = if 'Use Res?' then floor(pM / count) * count else pM;
    change = (pF - pre(pF)) / TSample;
    vF = if Source == Velocity.Encoder then change + 'a (Inv Trap)' * (change - pre(vF)) else vM;
  end when;
  iF = currentLoop.y;
  tM = iF * KT;
  der(vM) = tM / J;
  der(pM) = vM;
  annotation(
    experiment(Interval = 1e-5),
    __Torvane(
      responses(
        Closed(from = vC, to = vF),
        Open(from = vE, to = vF, kind = "open", linear('Use Res?' = false))),
      analysers(order = 14)));
end DigitalPI;
