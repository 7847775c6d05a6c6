package Torvane "The blocks that own loops are made of, for other tools that read the files"
  // torvane-cli knows these blocks by itself and does not read this file. What is seen at the next
  // evaluation there is seen at once here: half a step of the solver is between the two.

  type Waveform = enumeration(Sine, Square, Triangle, Sawtooth, Pulse, BipolarPulse, Trapezoid,
      SCurve, DC);

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

    block PI "kVP (e + integral of kVI e), limited with anti-wind-up"
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
        e = u - u_m;
        summed = pre(integral) + e * samplePeriod * kVI;
        unlimited = (e + summed) * kVP + feedForward;
        integral = if unlimited > yMax * windUp then yMax * windUp / kVP - e
          elseif unlimited < -yMax * windUp then -yMax * windUp / kVP - e else summed;
        y = max(-yMax, min(yMax, unlimited));
      end when;
    end PI;
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
