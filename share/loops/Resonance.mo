model Resonance "Sampled PI+ velocity loop around two inertias on a compliant shaft: the twin of 15-1"
  // vC -> PI+ -> - KCVA (vMF - vLF) -> LPF -> notch -> iC, late by TCalc -> current loop -> iF
  // iF -> KT -> mechanism -> vM, pM and vL, pL
  // pM, pL -> change per sample -> vMF, vLF -> VMix vMF + (1 - VMix) vLF = vF, fed back
  parameter Real KVP(min = 0, max = 1000) = 0.72
    "Proportional gain of the velocity loop (Amps per rad/s)";
  parameter Real KVI(min = 0, max = 10000) = 0
    "Integral gain of the velocity loop: below it the integral takes over (rad/s)";
  parameter Real KVFR(min = 0, max = 100) = 100
    "Share of the command that bypasses the command filter: 100 is plain PI (%)";
  parameter Real KS(unit = "Nm/rad", min = 0, max = 1e8) = 2000
    "Stiffness of the shaft between motor and load";
  parameter Real KCV(unit = "Nm-s/rad", min = 0, max = 100) = 0.5
    "Damping of the shaft between motor and load";
  parameter Real CLoop(unit = "Hz", min = 100, max = 10000) = 800
    "Bandwidth of the current loop";
  parameter Real TSample(unit = "Sec", min = 0.0001, max = 100) = 0.00025
    "Time between two samples";
  parameter Real TCalc(unit = "%", min = 0, max = 95) = 65
    "Delay from a sample to the new current command, as a part of TSample";
  parameter Real KT(unit = "Nm/Amp", min = 0.1, max = 10) = 1 "Torque constant of the motor";
  parameter Real JM(unit = "kg-m^2", min = 0.0001, max = 1) = 0.0002 "Inertia of the motor";
  parameter Real JL(unit = "kg-m^2", min = 0.0001, max = 10) = 0.0018 "Inertia of the load";
  parameter Real LPF(unit = "Hz", min = 10, max = 5000) = 800
    "Bandwidth of the two-pole low-pass in the current command";
  parameter Boolean 'Use Notch?' = false "Yes: the notch acts on the current command";
  parameter Real Notch(unit = "Hz", min = 10, max = 5000) = 800
    "Frequency of the notch in the current command";
  parameter Real VMix(min = 0, max = 2) = 1
    "Velocity that is fed back: 1 is the motor's, 0 the load's, between them a mix";
  parameter Real KCVA(min = -5, max = 5) = 0
    "Active damping by the difference of motor and load velocity (Amps per rad/s)";
  // The filters' coefficients do not follow TSample, as in 15-1.
  constant Real designed(unit = "s") = 0.00025 "Sample period for which the filters are made";

  Real vC(unit = "rad/s", displayUnit = "RPM") "Command velocity"
    annotation(__Torvane(scale = 10, show = true));
  Real vM(unit = "rad/s", displayUnit = "RPM") = mechanism.vM "Motor velocity"
    annotation(__Torvane(scale = 10));
  Real vE(unit = "rad/s", displayUnit = "RPM") = controller.e
    "Velocity error: what the controller works on" annotation(__Torvane(scale = 10));
  discrete Real vMF(unit = "rad/s", displayUnit = "RPM")
    "Motor velocity as estimated from its position" annotation(__Torvane(scale = 10));
  discrete Real vF(unit = "rad/s", displayUnit = "RPM")
    "Feedback velocity: what the controller is told"
    annotation(__Torvane(scale = 10, show = true));
  Real pM(unit = "rad", displayUnit = "Deg") = mechanism.pM "Motor position"
    annotation(__Torvane(scale = 2));
  Real vL(unit = "rad/s", displayUnit = "RPM") = mechanism.vL "Load velocity"
    annotation(__Torvane(scale = 10, show = true));
  discrete Real vLF(unit = "rad/s", displayUnit = "RPM")
    "Load velocity as estimated from its position" annotation(__Torvane(scale = 10));
  Real pL(unit = "rad", displayUnit = "Deg") = mechanism.pL "Load position"
    annotation(__Torvane(scale = 2));
  Real iC(unit = "Amps") "Current command: what the controller asks for"
    annotation(__Torvane(scale = 5));
  Real iF(unit = "Amps") = currentLoop.y "Current feedback: the current that flows"
    annotation(__Torvane(scale = 5));

  Torvane.Sources.Command generator(waveform = Torvane.Waveform.Square, frequency = 25,
    amplitude = 20) annotation(__Torvane(name = "Command Source"));
  Torvane.Discrete.PIPlus controller(u = vC, u_m = vF, kVP = KVP, kVI = KVI, kVFR = KVFR,
    samplePeriod = TSample, yMax = 20, windUp = 1.2);
  Torvane.Discrete.LowPass2 lowPass(u = controller.y - (vMF - vLF) * KCVA, f = LPF, zeta = 0.707,
    samplePeriod = TSample, coefficientPeriod = designed);
  Torvane.Discrete.Notch notchFilter(u = lowPass.y, f = Notch, zeta = 0.4, samplePeriod = TSample,
    coefficientPeriod = designed);
  Torvane.Discrete.ZeroOrderHold late(u = iC, samplePeriod = TSample,
    delay = 0.01 * TCalc * TSample);
  Torvane.Continuous.LowPass2 currentLoop(u = late.y, f = CLoop, zeta = 0.707);
  Torvane.Mechanics.TwoInertia mechanism(tau = KT * iF, JM = JM, JL = JL, KS = KS, KCV = KCV);
protected
  discrete Real pMF(unit = "rad") "Motor position as sampled";
  discrete Real pLF(unit = "rad") "Load position as sampled";
equation
  vC = generator.y * (6.2831852 / 60);
  when sample(0, TSample) then
    // The position sensors tell what was before the sample.
    pMF = pre(pM);
    pLF = pre(pL);
    vMF = (pMF - pre(pMF)) / TSample;
    vLF = (pLF - pre(pLF)) / TSample;
    vF = VMix * vMF + (1 - VMix) * vLF;
  end when;
  iC = if 'Use Notch?' then notchFilter.y else lowPass.y;
  annotation(
    experiment(Interval = 5e-5),
    __Torvane(responses(
      Closed(from = vC, to = vF),
      Open(from = vE, to = vF, kind = "open"))));
end Resonance;
