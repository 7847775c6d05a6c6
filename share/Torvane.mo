package Torvane "The blocks that own loops are made of, for other tools that read the files"
  // torvane-cli knows these blocks by itself and does not read this file. What is seen at the next
  // evaluation there is seen at once here: half a step of the solver is between the two.

  type Waveform = enumeration(Sine, Square, Triangle, Sawtooth, Pulse, BipolarPulse, Trapezoid,
      SCurve, DC);

  function Matched "Coefficients of 1/z and 1/z^2 that match s^2 + 2 zeta w s + w^2"
    input Real wT "w times the sample period";
    input Real zeta;
    output Real c[2];
  algorithm
    c := {-2 * exp(-zeta * wT) * (if zeta <= 1 then cos(wT * sqrt(max(0, 1 - zeta ^ 2)))
      else cosh(wT * sqrt(max(0, zeta ^ 2 - 1)))), exp(-2 * zeta * wT)};
  end Matched;

  function Polynomial "Coefficients in descending powers, of the one with these roots"
    input Real roots[:, 2] "Rows {real, imaginary}, with conjugates";
    output Real c[size(roots, 1) + 1];
  protected
    Real im[size(roots, 1) + 1] "Of the products so far";
    Real re;
  algorithm
    c := cat(1, {1}, zeros(size(roots, 1)));
    im := zeros(size(roots, 1) + 1);
    for k in 1:size(roots, 1) loop
      for j in k + 1:-1:2 loop
        re := c[j] - roots[k, 1] * c[j - 1] + roots[k, 2] * im[j - 1];
        im[j] := im[j] - roots[k, 1] * im[j - 1] - roots[k, 2] * c[j - 1];
        c[j] := re;
      end for;
    end for;
  end Polynomial;

  package Sources
    block Generator "Sine and square; a tool without the others gives the offset"
      parameter Waveform waveform = Waveform.Sine;
      parameter Real frequency(unit = "Hz") = 10;
      parameter Real amplitude = 10;
      parameter Real offset = 0;
      parameter Real phase(unit = "deg") = 0;
      parameter Real dutyCycle = 50;
      output Real y;
    protected
      Real cycles = time * frequency + phase / 360;
    equation
      y = offset + (if waveform == Waveform.Sine then
        amplitude * sin(2 * Modelica.Constants.pi * cycles)
        elseif waveform == Waveform.Square then
        (if cycles - floor(cycles) < 0.5 then amplitude else -amplitude) else 0);
    end Generator;

    block Command "The source in whose place instruments excite the loop"
      extends Generator;
    end Command;
  end Sources;

  package Continuous
    partial block Filter
      input Real u;
      output Real y;
    end Filter;

    block LowPass1 "w/(s + w)"
      extends Filter;
      parameter Real f(unit = "Hz");
    equation
      der(y) = 2 * Modelica.Constants.pi * f * (u - y);
    end LowPass1;

    block LowPass2 "w^2/(s^2 + 2 zeta w s + w^2)"
      extends Filter;
      parameter Real f(unit = "Hz");
      parameter Real zeta = 0.707;
    protected
      parameter Real w = 2 * Modelica.Constants.pi * f;
      Real rate;
    equation
      der(y) = rate;
      der(rate) = w ^ 2 * (u - y) - 2 * zeta * w * rate;
    end LowPass2;

    block TwoPoleTwoZero "(wp/wz)^2 (s^2 + 2 zz wz s + wz^2)/(s^2 + 2 zp wp s + wp^2)"
      extends Filter;
      parameter Real fPole(unit = "Hz");
      parameter Real zetaPole;
      parameter Real fZero(unit = "Hz");
      parameter Real zetaZero;
    protected
      parameter Real wp = 2 * Modelica.Constants.pi * fPole;
      parameter Real wz = 2 * Modelica.Constants.pi * fZero;
      Real first;
      Real second;
    equation
      y = (wp / wz) ^ 2 * u + first;
      der(first) = 2 * zetaZero * wp ^ 2 / wz * u + second - 2 * zetaPole * wp * y;
      der(second) = wp ^ 2 * (u - y);
    end TwoPoleTwoZero;

    block Notch "(s^2 + w^2)/(s^2 + 2 zeta w s + w^2)"
      parameter Real f(unit = "Hz");
      parameter Real zeta = 0.707;
      extends TwoPoleTwoZero(fPole = f, zetaPole = zeta, fZero = f, zetaZero = 0);
    end Notch;

    block TransferFunction "b/a in descending powers of s"
      extends Filter;
      parameter Real b[:];
      parameter Real a[:];
    protected
      Modelica.Blocks.Continuous.TransferFunction same(b = b, a = a);
    equation
      same.u = u;
      y = same.y;
    end TransferFunction;

    block StateSpace "x' = A x + B u, y = C x + D u"
      extends Filter;
      parameter Real A[:, :];
      parameter Real B[:];
      parameter Real C[:];
      parameter Real D = 0;
    protected
      Real x[size(B, 1)];
    equation
      der(x) = A * x + B * u;
      y = C * x + D * u;
    end StateSpace;

    block ZerosAndPoles "k (s - z1)(s - z2).../((s - p1)(s - p2)...): rows {real, imaginary}"
      extends Filter;
      parameter Real zeros[:, 2] = fill(0, 0, 2);
      parameter Real poles[:, 2];
      parameter Real k = 1;
    protected
      TransferFunction same(u = u, b = k * Polynomial(zeros), a = Polynomial(poles));
    equation
      y = same.y;
    end ZerosAndPoles;

    block DeadTime "u of T ago"
      extends Filter;
      parameter Real T(unit = "s");
      parameter Real start = 0;
    equation
      y = if time < T then start else delay(u, T);
    end DeadTime;

    block Memory "u of the evaluation before"
      extends Filter;
    equation
      y = delay(u, 1e-9);
    end Memory;
  end Continuous;

  package Nonlinear
    block Limiter
      extends Continuous.Filter;
      parameter Real yMax;
      parameter Real yMin = -yMax;
    equation
      y = max(yMin, min(yMax, u));
    end Limiter;

    block DeadZone
      extends Continuous.Filter;
      parameter Real uMax;
      parameter Real uMin = -uMax;
    equation
      y = if u > uMax then u - uMax elseif u < uMin then u - uMin else 0;
    end DeadZone;

    block Quantiser
      extends Continuous.Filter;
      parameter Real step;
      parameter Boolean down = false;
    equation
      y = floor(if down then u / step else u / step + 0.5) * step;
    end Quantiser;

    block SlewRateLimiter
      extends Continuous.Filter;
      parameter Real rising;
      parameter Real falling = -rising;
      parameter Real Td(unit = "s") = 0.001;
    equation
      der(y) = max(falling, min(rising, (u - y) / Td));
    end SlewRateLimiter;

    block Table "Straight lines between the rows, level beyond them"
      extends Continuous.Filter;
      parameter Real table[:, 2];
    protected
      Modelica.Blocks.Tables.CombiTable1Ds same(table = table,
        extrapolation = Modelica.Blocks.Types.Extrapolation.HoldLastPoint);
    equation
      same.u = u;
      y = same.y[1];
    end Table;
  end Nonlinear;

  package Discrete
    partial block Sampled
      input Real u;
      parameter Real samplePeriod(unit = "s");
      discrete output Real y(start = 0, fixed = true);
    end Sampled;

    block UnitDelay "u of the sample before"
      extends Sampled;
    protected
      discrete Real held(start = 0, fixed = true);
    equation
      when sample(0, samplePeriod) then
        y = pre(held);
        held = u;
      end when;
    end UnitDelay;

    block ZeroOrderHold "u as sampled, from delay after each sample on"
      extends Sampled;
      parameter Real delay(unit = "s") = 0;
    equation
      when sample(delay, samplePeriod) then
        y = u;
      end when;
    end ZeroOrderHold;

    block LowPass1 "Pole-matched"
      extends Sampled;
      parameter Real f(unit = "Hz");
      parameter Real coefficientPeriod(unit = "s") = samplePeriod;
    protected
      parameter Real p = exp(-2 * Modelica.Constants.pi * f * coefficientPeriod);
    equation
      when sample(0, samplePeriod) then
        y = (1 - p) * u + p * pre(y);
      end when;
    end LowPass1;

    block TwoPoleTwoZero "Poles and zeros matched, 1 at z = 1"
      extends Sampled;
      parameter Real fPole(unit = "Hz");
      parameter Real zetaPole;
      parameter Real fZero(unit = "Hz");
      parameter Real zetaZero;
      parameter Real coefficientPeriod(unit = "s") = samplePeriod;
    protected
      parameter Real p[2] = Matched(2 * Modelica.Constants.pi * fPole * coefficientPeriod, zetaPole);
      parameter Real z[2] = Matched(2 * Modelica.Constants.pi * fZero * coefficientPeriod, zetaZero);
      discrete Real u1(start = 0, fixed = true), u2(start = 0, fixed = true);
      discrete Real y1(start = 0, fixed = true), y2(start = 0, fixed = true);
    equation
      when sample(0, samplePeriod) then
        y = (1 + p[1] + p[2]) / (1 + z[1] + z[2]) * (u + z[1] * pre(u1) + z[2] * pre(u2))
          - p[1] * pre(y1) - p[2] * pre(y2);
        u1 = u;
        u2 = pre(u1);
        y1 = y;
        y2 = pre(y1);
      end when;
    end TwoPoleTwoZero;

    block Notch "Poles and zeros matched"
      parameter Real f(unit = "Hz");
      parameter Real zeta = 0.707;
      extends TwoPoleTwoZero(fPole = f, zetaPole = zeta, fZero = f, zetaZero = 0);
    end Notch;

    block LowPass2 "Pole-matched"
      extends Sampled;
      parameter Real f(unit = "Hz");
      parameter Real zeta = 0.707;
      parameter Real coefficientPeriod(unit = "s") = samplePeriod;
    protected
      parameter Real p[2] = Matched(2 * Modelica.Constants.pi * f * coefficientPeriod, zeta);
      discrete Real y1(start = 0, fixed = true), y2(start = 0, fixed = true);
    equation
      when sample(0, samplePeriod) then
        y = (1 + p[1] + p[2]) * u - p[1] * pre(y1) - p[2] * pre(y2);
        y1 = y;
        y2 = pre(y1);
      end when;
    end LowPass2;

    block StateSpace "x(k+1) = A x + B u, y = C x + D u"
      extends Sampled;
      parameter Real A[:, :];
      parameter Real B[:];
      parameter Real C[:];
      parameter Real D = 0;
    protected
      discrete Real x[size(B, 1)](each start = 0, each fixed = true);
    equation
      when sample(0, samplePeriod) then
        x = A * pre(x) + B * u;
        y = C * pre(x) + D * u;
      end when;
    end StateSpace;

    block TransferFunction "b/a in descending powers of z"
      extends Sampled;
      parameter Real b[:];
      parameter Real a[:];
    protected
      parameter Integer n = size(a, 1) - 1;
      parameter Real bs[n + 1] = cat(1, zeros(n + 1 - size(b, 1)), b) / a[1];
      parameter Real as[n + 1] = a / a[1];
      discrete Real us[n](each start = 0, each fixed = true) "Of the samples before, the last first";
      discrete Real ys[n](each start = 0, each fixed = true);
    equation
      when sample(0, samplePeriod) then
        y = bs[1] * u + bs[2:end] * pre(us) - as[2:end] * pre(ys);
        for i in 1:n loop
          us[i] = if i == 1 then u else pre(us[max(i - 1, 1)]);
          ys[i] = if i == 1 then y else pre(ys[max(i - 1, 1)]);
        end for;
      end when;
    end TransferFunction;

    block ZerosAndPoles "k (z - z1)(z - z2).../((z - p1)(z - p2)...): rows {real, imaginary}"
      extends Sampled;
      parameter Real zeros[:, 2] = fill(0, 0, 2);
      parameter Real poles[:, 2];
      parameter Real k = 1;
    protected
      TransferFunction same(u = u, samplePeriod = samplePeriod, b = k * Polynomial(zeros),
        a = Polynomial(poles));
    equation
      y = same.y;
    end ZerosAndPoles;

    partial block Controller "The output limited, the integral with anti-wind-up"
      extends Sampled;
      input Real u_m;
      input Real feedForward = 0;
      parameter Real kVP;
      parameter Real kVI(unit = "1/s");
      parameter Real yMax = 20;
      parameter Real windUp = 1.2;
      discrete output Real e(start = 0, fixed = true);
    protected
      discrete Real integral(start = 0, fixed = true);
      discrete Real summed;
      discrete Real unlimited;
    equation
      when sample(0, samplePeriod) then
        summed = pre(integral) + e * samplePeriod * kVI;
        integral = if kVI == 0 then 0 elseif kVP == 0 then summed
          elseif unlimited > yMax * windUp then yMax * windUp / kVP - e
          elseif unlimited < -yMax * windUp then -yMax * windUp / kVP - e else summed;
        y = max(-yMax, min(yMax, unlimited));
      end when;
    end Controller;

    block PI "kVP (e + integral of kVI e)"
      extends Controller;
    equation
      when sample(0, samplePeriod) then
        e = u - u_m;
        unlimited = (e + summed) * kVP + feedForward;
      end when;
    end PI;

    block PIPlus "A PI whose command goes through (kVFR/100 s + kVI)/(s + kVI)"
      extends Controller;
      parameter Real kVFR = 100;
    protected
      discrete Real command(start = 0, fixed = true);
      discrete Real filtered(start = 0, fixed = true);
    equation
      when sample(0, samplePeriod) then
        command = u;
        filtered = if kVI == 0 then 0.01 * kVFR * u else ((0.01 * kVFR + kVI * samplePeriod) * u
          + pre(filtered) - 0.01 * kVFR * pre(command)) / (kVI * samplePeriod + 1);
        e = filtered - u_m;
        unlimited = (e + summed) * kVP + feedForward;
      end when;
    end PIPlus;

    block PID "A PI with a filtered derivative and command"
      extends Controller;
      parameter Real kVD(unit = "s") = 0;
      parameter Real kVFR = 1;
      parameter Real fD(unit = "Hz") = 2000;
    protected
      parameter Real a = exp(-kVI * samplePeriod);
      parameter Real b = exp(-2 * Modelica.Constants.pi * fD * samplePeriod);
      discrete Real filtered(start = 0, fixed = true);
      discrete Real derivative(start = 0, fixed = true);
    equation
      when sample(0, samplePeriod) then
        filtered = (1 - a) * u + a * pre(filtered);
        e = kVFR * u + (1 - kVFR) * filtered - u_m;
        derivative = (1 - b) * (e - pre(e)) * kVD / samplePeriod + b * pre(derivative);
        unlimited = (e + summed + derivative) * kVP + feedForward;
      end when;
    end PID;
  end Discrete;

  package Mechanics
    block TwoInertia "Two inertias on a compliant shaft, without friction"
      input Real tau(unit = "N.m");
      input Real tauLoad(unit = "N.m") = 0;
      input Real tau2(unit = "N.m") = 0;
      parameter Real JM(unit = "kg.m2");
      parameter Real JL(unit = "kg.m2");
      parameter Real KS(unit = "N.m/rad");
      parameter Real KCV(unit = "N.m.s/rad");
      parameter Real gear = 1;
      parameter Real KVM(unit = "N.m.s/rad") = 0;
      parameter Real KVL(unit = "N.m.s/rad") = 0;
      output Real vM, pM, vL, pL, aM, aL, tauShaft;
    equation
      tauShaft = (vM - gear * vL) * KCV + (pM - gear * pL) * KS;
      JM * aM = tau + tau2 - KVM * vM - tauShaft;
      JL * aL = tauLoad - KVL * vL + gear * tauShaft;
      der(vM) = aM;
      der(pM) = vM;
      der(vL) = aL;
      der(pL) = vL;
    end TwoInertia;
  end Mechanics;
end Torvane;
