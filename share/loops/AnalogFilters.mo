model AnalogFilters "Three continuous filters side by side on one source: the twin of 9-1"
  parameter Real '1-Pole Freq'(unit = "Hz", min = 0, max = 10000) = 45
    "Break frequency of the one-pole low-pass";
  parameter Real '2-Pole Freq'(unit = "Hz", min = 0, max = 10000) = 45
    "Natural frequency of the two-pole low-pass";
  parameter Real '2-Pole Zeta'(min = 0, max = 10) = 0.707
    "Damping of the two-pole low-pass: below 1 it overshoots";
  parameter Real 'Notch Freq'(unit = "Hz", min = 0, max = 10000) = 40
    "Frequency that the notch takes out";
  parameter Real 'Notch Zeta'(min = 0, max = 1) = 0.707
    "Damping of the notch's poles: a smaller one makes a narrower notch";

  Real vC(unit = "volts") = source.y "The source" annotation(__Torvane(scale = 0.5, show = true));
  Real vLP1(unit = "volts") = onePole.y "Output of the one-pole low-pass"
    annotation(__Torvane(scale = 0.5, show = true));
  Real vLP2(unit = "volts") = twoPole.y "Output of the two-pole low-pass"
    annotation(__Torvane(scale = 0.5, show = true));
  Real vNotch(unit = "volts") = notch.y "Output of the notch"
    annotation(__Torvane(scale = 0.5, show = true));

  Torvane.Sources.Command source(waveform = Torvane.Waveform.Square, frequency = 8, amplitude = 1)
    annotation(__Torvane(name = "MainWaveGen"));
  Torvane.Continuous.LowPass1 onePole(u = vC, f = '1-Pole Freq');
  Torvane.Continuous.LowPass2 twoPole(u = vC, f = '2-Pole Freq', zeta = '2-Pole Zeta');
  Torvane.Continuous.Notch notch(u = vC, f = 'Notch Freq', zeta = 'Notch Zeta');
  annotation(
    experiment(Interval = 5e-5),
    __Torvane(
      scope(division = 0.02),
      responses(
        '1-Pole'(from = vC, to = vLP1),
        '2-Pole'(from = vC, to = vLP2),
        Notch(from = vC, to = vNotch)),
      analysers(sweepTo = 400, settleTime = 0.2, amplitude = 1)));
end AnalogFilters;
