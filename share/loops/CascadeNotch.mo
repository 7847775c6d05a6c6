model CascadeNotch "Position, velocity and current in a cascade, with a notch against a resonance"
  // pC - pM -> KP -> vC - vM -> KVP (1 + KVI/s) -> notch -> current loop -> two inertias -> pM, pL
  parameter Real KP(unit = "1/s", min = 0, max = 1000) = 60 "Gain of the position loop";
  parameter Real KVP(unit = "A.s/rad", min = 0, max = 100) = 0.4 "Gain of the velocity loop";
  parameter Real KVI(unit = "1/s", min = 0, max = 1000) = 40 "Integral gain of the velocity loop";
  parameter Real fNotch(unit = "Hz", min = 10, max = 5000) = 530 "Frequency of the notch";
  parameter Real zetaNotch(min = 0.01, max = 2) = 0.5 "Damping of the notch's poles";
  parameter Real fCurrent(unit = "Hz", min = 10, max = 5000) = 1000
    "Bandwidth of the current loop";
  parameter Real KT(unit = "N.m/A", min = 0.01, max = 10) = 1 "Torque constant";
  parameter Real JM(unit = "kg.m2", min = 1e-6, max = 1) = 0.0002 "Inertia of the motor";
  parameter Real JL(unit = "kg.m2", min = 1e-6, max = 1) = 0.0018 "Inertia of the load";
  parameter Real KS(unit = "N.m/rad", min = 0, max = 1e6) = 2000 "Stiffness of the shaft";
  parameter Real KCV(unit = "N.m.s/rad", min = 0, max = 10) = 0.05 "Damping of the shaft";

  Real pC(unit = "rad", displayUnit = "Deg") = source.y "Wanted position"
    annotation(__Torvane(scale = 2, show = true));
  Real pM(unit = "rad", displayUnit = "Deg") = mechanism.pM "Position of the motor"
    annotation(__Torvane(scale = 2));
  Real pL(unit = "rad", displayUnit = "Deg") = mechanism.pL "Position of the load"
    annotation(__Torvane(scale = 2, show = true));
  Real vC(unit = "rad/s", displayUnit = "RPM") "Wanted velocity" annotation(__Torvane(scale = 20));
  Real vM(unit = "rad/s", displayUnit = "RPM") = mechanism.vM "Velocity of the motor"
    annotation(__Torvane(scale = 20));
  Real vE(unit = "rad/s", displayUnit = "RPM") = vC - vM "What is missing of the velocity"
    annotation(__Torvane(scale = 20));
  Real iC(unit = "A") "Wanted current" annotation(__Torvane(scale = 2));
  Real iF(unit = "A") = current.y "Current that flows" annotation(__Torvane(scale = 2));

  Torvane.Sources.Command source(waveform = Torvane.Waveform.SCurve, frequency = 5,
    amplitude = 0.1) annotation(__Torvane(name = "Command Source"));
  Torvane.Continuous.Notch notch(u = KVP * (vE + KVI * vEInt), f = fNotch, zeta = zetaNotch);
  Torvane.Continuous.LowPass2 current(u = iC, f = fCurrent);
  Torvane.Mechanics.TwoInertia mechanism(tau = KT * iF, JM = JM, JL = JL, KS = KS, KCV = KCV);
protected
  Real vEInt(unit = "rad") "Integral of the velocity error";
equation
  vC = KP * (pC - pM);
  der(vEInt) = vE;
  iC = notch.y;
  annotation(
    experiment(Interval = 1e-5),
    __Torvane(
      scope(division = 0.05),
      responses(
        Closed(from = pC, to = pL),
        Velocity(from = vC, to = vM),
        Open(from = vE, to = vM, kind = "open")),
      analysers(amplitude = 0.01)));
end CascadeNotch;
