(* Room thermostat.

   The probe is slow: it delivers a value only in the cycles in which
   "fresh" is true, so the probe and all that is computed from it alone
   live on the clock "fresh".  The controller itself runs in every cycle
   and works with the value held by "current". *)

type program_t.                         -- the weekly program, kept elsewhere

const weekly : program_t; comfort_gap, frost_limit : real;
      (calibration : real) when fresh;  -- exists only together with the probe
      shortest_run : int.

function wanted(plan : program_t; minute : int) returns (target : real);
function average(newer : real; older : real) returns (mean : real);

node thermostat(
   fresh : bool;
   (probe : real) when fresh;
   (minute : int) when true;            -- the same as no clock at all
   holiday, window_open : bool
) returns (
   heat, frost_guard : bool;
   room : real;
   (drift : real) when fresh
);
var
   (corrected, mean : real) when fresh;
   (valid : bool) when fresh;
   (first_fresh : bool) when fresh;
   seen : bool;
   target, low, high : real;
   run : int;
   may_switch, demand : bool;
let
   corrected = probe + calibration;
   mean = corrected -> average(corrected, pre mean);
   drift = 0.0 -> corrected - pre corrected;
   valid = corrected > -40.0 and corrected < 85.0;
   first_fresh = true -> false;

   -- Before the first value "current" has nothing to hold.
   seen = fresh or (false -> pre seen);
   room = if seen then current mean else frost_limit;

   target = if holiday then frost_limit + comfort_gap else wanted(weekly, minute);
   low = target - comfort_gap / 2.0;
   high = target + comfort_gap / 2.0;

   -- Two-point control with a shortest time between two switchings.
   demand = if room < low then true
            else if room > high then false
            else (false -> pre heat);
   may_switch = run >= shortest_run;
   run = shortest_run -> if heat = pre heat then pre run + 1 else 0;
   heat = frost_guard or not window_open and demand
          -> if pre may_switch then frost_guard or not window_open and demand
             else pre heat;
   frost_guard = seen and current valid and room < frost_limit;

   -- The first value of the probe has no past, hence no drift.
   assert first_fresh => (drift = 0.0);
   assert low <= high;
tel
