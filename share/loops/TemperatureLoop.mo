model TemperatureLoop "A sampled PI controller on an oven with a slow sensor"
  // Wanted - Measured = Error -> PI, each TSample -> Power -> oven -> Temperature -> sensor
  parameter Real KP(unit = "W/K", min = 0, max = 1e4) = 40 "Proportional gain";
  parameter Real TI(unit = "s", min = 1, max = 1e5) = 400 "Time of the integral";
  parameter Real TSample(unit = "s", min = 0.1, max = 100) = 5 "Time between two samples";
  parameter Real PowerMax(unit = "W", min = 1, max = 1e5) = 2000 "Largest power of the heater";
  parameter Real C(unit = "J/K", min = 1, max = 1e6) = 5000 "Heat that a degree takes";
  parameter Real R(unit = "K/W", min = 1e-4, max = 100) = 0.15 "Resistance to the surroundings";
  parameter Real TSensor(unit = "s", min = 0.1, max = 1e3) = 20 "Time constant of the sensor";
  parameter Real Ambient(unit = "degC", min = -50, max = 100) = 20 "Temperature around the oven";

  Real Wanted(unit = "degC") = source.y "Wanted temperature"
    annotation(__Torvane(scale = 20, offset = 100, show = true));
  discrete Real Error(unit = "K") "What is missing" annotation(__Torvane(scale = 20));
  discrete Real Power(unit = "W") "Power of the heater"
    annotation(__Torvane(scale = 500, show = true));
  Real Temperature(unit = "degC", start = Ambient) "Temperature of the oven"
    annotation(__Torvane(scale = 20, offset = 100, show = true));
  Real Measured(unit = "degC", start = Ambient) "What the sensor tells"
    annotation(__Torvane(scale = 20, offset = 100));

  Torvane.Sources.Command source(waveform = Torvane.Waveform.Square, frequency = 0.0002,
    amplitude = 20, offset = 100) annotation(__Torvane(name = "Command Source"));
protected
  discrete Real integral(unit = "W") "Integral part of the power";
  discrete Real unlimited(unit = "W") "Power without its limits";
equation
  when sample(0, TSample) then
    Error = Wanted - Measured;
    unlimited = KP * Error + pre(integral);
    Power = if unlimited > PowerMax then PowerMax elseif unlimited < 0 then 0 else unlimited;
    // The integral moves only while the power is within its limits.
    integral = if Power == unlimited then pre(integral) + KP * Error * TSample / TI
      else pre(integral);
  end when;
  der(Temperature) = (Power - (Temperature - Ambient) / R) / C;
  der(Measured) = (Temperature - Measured) / TSensor;
  annotation(
    experiment(Interval = 0.1),
    __Torvane(
      scope(division = 500),
      responses(
        Closed(from = Wanted, to = Measured),
        Open(from = Error, to = Measured, kind = "open")),
      analysers(amplitude = 2, sweepTo = 0.05, settleTime = 1000, samplePeriod = 5)));
end TemperatureLoop;
