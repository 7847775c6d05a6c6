model CascadePosition "Position loop around a sampled PI+ velocity loop: the twin of 16-1"
  // vPC -> sum -> pC - pF = pE -> KP -> + -> vC -> PI+ -> iC, late by TCalc -> current loop
  // vPC -> KFV, change per sample -> KFA J/(KT KVP) -> +
  // iF -> KT -> tE + tD = tM -> 1/(J s) -> vM -> 1/s -> pM
  // pM -> encoder -> pF -> change per sample -> vF, fed back
  parameter Real KP(unit = "mps/m", min = 0, max = 1000) = 250
    "Gain of the position loop: velocity command per position error";
  parameter Real KVP(min = 0, max = 1000) = 1.2
    "Proportional gain of the velocity loop (Amps per rad/s)";
  parameter Real KVI(min = 0, max = 10000) = 250
    "Integral gain of the velocity loop: below it the integral takes over (rad/s)";
  parameter Real KVFR(unit = "%", min = 0, max = 200) = 65
    "Share of the command that bypasses the command filter: 100 is plain PI";
  parameter Real KFV(unit = "%", min = 0, max = 200) = 0
    "Velocity feed-forward: 100 leaves no following error at constant speed";
  parameter Real KFA(unit = "%", min = 0, max = 1000) = 0
    "Acceleration feed-forward: 100 is the current that J needs";
  parameter Real CLoop(unit = "Hz", min = 100, max = 10000) = 800
    "Bandwidth of the current loop";
  parameter Real TSample(unit = "Sec", min = 0.0001, max = 100) = 0.00025
    "Time between two samples";
  parameter Real TCalc(unit = "%", min = 0, max = 95) = 60
    "Delay from a sample to the new current command, as a part of TSample";
  parameter Real KT(unit = "n-m/Amp", min = 0.1, max = 10) = 1 "Torque constant of the motor";
  parameter Real J(unit = "kg-m^2", min = 1e-6, max = 1) = 0.002 "Inertia of motor and load";
  parameter Real Res(unit = "lines/rev", min = 6, max = 2e10) = 1e10
    "Lines of the encoder; it counts four a line";
  final parameter Real count(unit = "rad") = 1 / (4 * Res * (1 / 6.2831852)) "One encoder count";

  Real vPC(unit = "rad/s", displayUnit = "RPM") "Velocity of the position command"
    annotation(__Torvane(scale = 20, show = true));
  discrete Real vC(unit = "rad/s", displayUnit = "RPM")
    "Velocity command: output of the position loop" annotation(__Torvane(scale = 20));
  Real vM(unit = "rad/s", displayUnit = "RPM") "Motor velocity" annotation(__Torvane(scale = 20));
  Real vE(unit = "rad/s", displayUnit = "RPM") = controller.e
    "Velocity error: what the controller works on" annotation(__Torvane(scale = 20));
  discrete Real vF(unit = "rad/s", displayUnit = "RPM")
    "Feedback velocity: what the controller is told"
    annotation(__Torvane(scale = 20, show = true));
  Real pM(unit = "rad", displayUnit = "Revs") "Motor position" annotation(__Torvane(scale = 0.02));
  discrete Real pF(unit = "rad", displayUnit = "Revs") "Feedback position, as sampled"
    annotation(__Torvane(scale = 0.02));
  discrete Real pC(unit = "rad", displayUnit = "Revs") "Position command"
    annotation(__Torvane(scale = 0.02));
  discrete Real pE(unit = "rad", displayUnit = "Revs") "Position error"
    annotation(__Torvane(scale = 0.005, offset = -0.01, show = true));
  Real iC(unit = "Amps") = controller.y "Current command: what the controller asks for"
    annotation(__Torvane(scale = 5));
  Real iF(unit = "Amps") = currentLoop.y "Current feedback: the current that flows"
    annotation(__Torvane(scale = 5));
  Real tD(unit = "Nm") "Disturbance torque" annotation(__Torvane(scale = 2));
  Real tM(unit = "Nm") "Torque that turns the motor" annotation(__Torvane(scale = 5));
  Real tE(unit = "Nm") "Torque of the current alone: KT iF" annotation(__Torvane(scale = 5));

  Torvane.Sources.Command command(waveform = Torvane.Waveform.Trapezoid, frequency = 8,
    amplitude = 60, dutyCycle = 75) annotation(__Torvane(name = "Command Source"));
  Torvane.Sources.Generator disturbance(waveform = Torvane.Waveform.DC, frequency = 8,
    amplitude = 1) annotation(__Torvane(name = "Disturbance Source"));
  Torvane.Discrete.PIPlus controller(u = vC, u_m = vF, kVP = KVP, kVI = KVI, kVFR = KVFR,
    samplePeriod = TSample, yMax = 20, windUp = 1.2);
  Torvane.Discrete.ZeroOrderHold late(u = iC, samplePeriod = TSample,
    delay = 0.01 * TCalc * TSample);
  Torvane.Continuous.LowPass2 currentLoop(u = late.y, f = CLoop, zeta = 0.707);
protected
  discrete Real vPCSampled(unit = "rad/s") "Velocity command at the sample";
  discrete Real acceleration(unit = "rad/s2") "Its change per sample";
  discrete Real fromPosition(unit = "rad/s") "Velocity command without acceleration feed-forward";
equation
  vPC = command.y * (6.2831852 / 60);
  tD = disturbance.y;
  when sample(0, TSample) then
    vPCSampled = vPC;
    acceleration = (vPCSampled - pre(vPCSampled)) / TSample;
    pC = pre(pC) + vPC * TSample;
    pF = floor(pM / count) * count;
    vF = (pF - pre(pF)) / TSample;
    pE = pC - pF;
    fromPosition = pE * KP + KFV * vPC * 0.01;
    // Without proportional velocity gain no velocity command could make the acceleration.
    vC = if KVP <> 0 then fromPosition + 0.01 * KFA * acceleration * J / (KT * KVP)
      else fromPosition;
  end when;
  tE = iF * KT;
  tM = tE + tD;
  der(vM) = tM / J;
  der(pM) = vM;
  annotation(
    experiment(Interval = 1e-5),
    __Torvane(
      scope(division = 0.02),
      responses(Closed(from = vPC, to = vF, kind = "closed", meanwhile(KFV = 0, KFA = 0),
        linear(Res = 1e10)))));
end CascadePosition;
