-- Smoothing of a measured value: spikes are limited, the rest goes through
-- a first-order low pass, and the result is cut into a whole number and
-- thousandths for a display that knows integers only.

const
   gain, quiet : real;          -- share of a new sample; noise band
   max_step : real;
   full_scale : int;

function limit(value : real; low : real; high : real)
returns (limited : real)

function magnitude(value : real) returns (size : real).

-- Two results: such a function can only stand in a tuple equation.
function split(value : real) returns (whole : int; rest : real),

node filter(sample : real; enable, freeze : bool)
returns (smooth, power : real; digits, thousandths : int; settled, overrange : bool);
var
   last_good, step, limited_step, cleaned : real;
   fraction, energy : real;
   calm : int;
let
   last_good = sample -> pre cleaned;
   step = sample - last_good;
   limited_step = limit(step, -max_step, max_step);
   cleaned = last_good + (if enable then limited_step else step);

   -- y := y + g * (x - y), which needs no memory but the last y.
   smooth = cleaned -> if freeze then pre smooth
                       else pre smooth + gain * (cleaned - pre smooth);

   (digits, fraction) = split(smooth);
   thousandths = int(fraction * 1000.0 + 0.5) mod 1000;

   -- Mean square of what the filter took away.
   energy = (cleaned - smooth) ** 2.0;
   power = energy -> 0.9 * pre power + 1E-1 * energy;

   calm = if magnitude(step) < quiet then (1 -> pre calm + 1) else 0;
   settled = calm > 20;
   overrange = digits >= full_scale or real digits > real full_scale - 0.5e0;
tel,
