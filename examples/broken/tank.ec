-- A tank with two pumps, in a first draft. It loads; lint.tcl tells what is wrong with it.
const full : int;
node tank(level, step : int; sampled : bool; (probe : int) when sampled)
returns (fill, drain, alarm : bool; mean : int);
var
  low, high : bool;
  (drift : int) when sampled;
let
  low = level < full div 4;
  high = level + probe > full;         -- the probe is not there in every cycle
  fill = low and not drain;            -- each pump waits for the other
  drain = high and not fill;
  alarm = full - level;                -- "< 2" is missing
  drift = 0 -> probe - pre probe;
  assert not (fill and drain);
tel
