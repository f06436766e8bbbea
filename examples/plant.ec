(* Steam boiler plant: one drum boiler with a modulating gas burner, two
   feed pumps, a drum level control, alarms and an operator panel.

   The program runs in cycles of a tenth of a second (the base clock).
   Slow measurements come on the clock "sec", once a second, and the
   bookkeeping is done on the clock "minute", which lives on "sec".

   Sections:
      1  time base
      2  measurements: plausibility and selection
      3  drum pressure
      4  drum level and feed water
      5  feed pumps
      6  interlocks
      7  burner sequence
      8  combustion: fuel, air, ignition
      9  water treatment
     10  accounting
     11  alarms
     12  operator panel and telegram  *)

type stage = (OFF, PURGE, PILOT, LIGHT, RUN, AFTERBLOW, LOCKOUT),
     pump = (NONE, PUMP_A, PUMP_B),
     season = (SUMMER, WINTER),
     severity = (QUIET, NOTICE, ALARM, TRIP);

-- Kept by the host: how the pressure follows the weather, and a time of day.
type curve, stamp.

const summer_curve, winter_curve : curve;
      never : stamp.

const
   -- pressures in bar, levels in millimetres around the middle of the glass
   pressure_low, pressure_high, pressure_trip, pressure_span : real;
   level_low, level_high, level_trip, level_band : real;
   gas_low, gas_high : real;
   -- times in cycles
   purge_time, pilot_time, light_time, blow_time, flame_time : int;
   change_over : int;
   -- controllers
   press_gain, press_reset, level_gain, flow_gain, level_reset : real;
   (weather_gain : real) when sec;
   -- limits
   max_slope, low_fire, high_fire : real;
   (salt_limit, salt_hysteresis : real) when minute;
   max_trials, max_pump_hours : int;

function clamp(value : real; low : real; high : real)
returns (bounded : real);

function median(a : real; b : real; c : real) returns (middle : real)

function magnitude(value : real) returns (size : real)

function target(c : curve; outside : real) returns (pressure : real).

function clock_time(cycle : int) returns (s : stamp),

function step(seed : int; word : int) returns (sum : int);

-- Density of the water and heat of the steam at a pressure.
function steam_table(pressure : real) returns (density : real; heat : real);

function split(value : real) returns (whole : int; rest : real).

-- Which pump leads and which one waits.
function rotate(hours_a : int; hours_b : int; ready_a : bool; ready_b : bool)
returns (lead : pump; standby : pump)

function first_out(old : int; pressure : bool; water : bool; flame : bool; gas : bool)
returns (cause : int; count : int);

node plant(
   sec : bool;                                      -- a second has passed
   (minute : bool) when sec;                        -- and so has a minute
   start, stop, reset, emergency, ack : bool;       -- buttons
   remote : bool; remote_demand : int;              -- percent
   p_left, p_right, p_top : real;                   -- drum pressure
   level_main, level_check : real;
   steam_flow, feed_flow, gas_pressure : real;
   (outside, stack, feed_temp : real) when sec;
   (oxygen : real) when sec;
   (salt : real) when minute;
   flame_eye, flame_rod : bool;
   fan_runs, damper_open, damper_shut, valve_1_shut, valve_2_shut, gas_on : bool;
   float_a, float_b : bool;                         -- low water switches
   a_ready, b_ready, a_runs, b_runs : bool;
   lamp_test : bool; page : int
)
returns (
   fan, spark, pilot_valve, valve_1, valve_2, vent : bool;
   gas_position, air_position : real;
   pump_a, pump_b : bool; feed_valve : real;
   (blowdown : bool) when minute;
   dosing : bool;
   now : stage; class : severity;
   horn, beacon, ready_lamp, run_lamp, fault_lamp : bool;
   digits, decimals : int;
   (efficiency : real) when sec;
   (hours_run : int) when minute;
   telegram : int;
   tripped_at : stamp
);
var
   -- 1
   first : bool; cycle : int;
   (second_of_minute : int) when sec;
   (minutes_run : int) when minute; (minutes_held : int) when sec;
   clock_known, minute_known : bool;
   quick, slow : bool; minutes_total : int;
   (minute_seen : bool) when sec;
   -- 2
   left_still, right_still : int;
   left_ok, right_ok, top_ok, any_pressure, all_pressure : bool;
   left_right, right_top, left_top : real;
   odd_one_out, pressure_doubt : bool;
   pressure_raw, pressure, pressure_slope : real;
   level_raw, level, level_gap, swell, level_corrected : real;
   level_doubt, flow_ok, gas_ok : bool;
   flow_held, steam, feed : real;
   weather : real; (weather_filtered : real) when sec;
   weather_now, stack_now, oxygen_now, feed_temp_now : real;
   oxygen_ok : bool;
   -- 3
   period : season; chart : curve;
   (heating_weather : bool) when sec;
   set_weather, set_wanted, set_point, set_error : real;
   hold_integral, wound_up, wound_down : bool;
   proportional, integral, demand_auto, demand_remote, demand, demand_limited : real;
   over_pressure, under_pressure, pressure_reached : bool;
   -- 4
   density, heat : real;
   level_error, flow_error, feed_integral, feed_sum, feed_wanted : real;
   feed_manual, feed_freeze : bool;
   low_water, very_low_water, high_water, both_floats : bool;
   float_timer : int; water_lost : bool;
   -- 5
   lead, standby, leading : pump;
   (hours_a, hours_b : int) when minute;
   a_hours_now, b_hours_now : int;
   (a_minutes, b_minutes : int) when minute;
   change_timer, fail_timer : int;
   change_due, lead_failed, help_needed, feed_allowed : bool;
   a_failed, b_failed, a_wanted, b_wanted, pumps_lost, service_due : bool;
   -- 6
   stop_request, start_request, start_edge : bool;
   valves_shut, false_flame, flame, flame_lost, flame_doubt : bool;
   flame_timer, doubt_timer : int;
   gas_trip, water_trip, pressure_trips, burner_trip, fan_trip, trip : bool;
   permit, interlock : bool;
   -- 7
   before : stage; stage_time : int; entered : bool;
   purge_done, pilot_done, light_done, blow_done : bool;
   trials : int; trial_failed, exhausted : bool;
   from_off, from_purge, from_pilot, from_light, from_run, from_blow, from_lockout : stage;
   -- 8
   firing, lighting : bool;
   fire, fire_slope, gas_curve, air_curve, trim : real;
   (trim_error, trim_sum : real) when sec;
   air_first, air_before, cross_limit : real;
   -- 9
   (salt_high : bool) when minute; (salt_rate : real) when minute;
   (blow_count : int) when minute;
   blows : int; dose_timer : int; dose_due : bool;
   -- 10
   (gas_used, steam_made, loss : real) when sec;
   (tons : real) when minute;
   (sum_steam : real) when sec;
   (burner_minutes : int) when minute; (burns : bool) when minute;
   tons_held : real; starts : int;
   -- 11
   cause, causes : int; cause_was : int;
   pressure_alarm, water_alarm, flame_alarm, gas_alarm : bool;
   notice, alarm : bool;
   fresh_alarm, silenced, standing : bool;
   trip_edge, any_fault : bool; worse : bool;
   -- 12
   shown, fraction : real; page_ok : bool;
   status, sum_1, sum_2, sum_3 : int;
   beat : bool;
let
   -- What the wiring promises.
   assert #(damper_open, damper_shut);
   assert #(start, stop, reset and ack);
   assert remote_demand >= 0 and remote_demand <= 100;
   assert fan_runs or not (damper_open and spark);
   assert (a_runs => a_ready) and (b_runs => b_ready);

   -- What the plant must never do.
   assert (now = LOCKOUT) => nor(valve_1, valve_2, pilot_valve, spark);
   assert (valve_1 and valve_2) => not vent;
   assert low_fire < high_fire -> trip => not firing;

   ------------------------------------------------------------------
   -- 1  Time base
   ------------------------------------------------------------------
   first = true -> false;
   cycle = 0 -> (pre cycle + 1) mod 864000;                     -- of the day
   second_of_minute = 0 -> if minute then 0 else (pre second_of_minute + 1) % 60;
   minutes_run = 0 -> pre minutes_run + 1;
   clock_known = sec or (false -> pre clock_known);
   minute_seen = minute or (false -> pre minute_seen);
   minute_known = clock_known and current minute_seen;
   minutes_held = if minute_seen then current minutes_run else 0;
   minutes_total = if clock_known then current minutes_held else 0;
   quick = cycle mod 4 < 2;
   slow = cycle div 5 mod 2 = 0;

   ------------------------------------------------------------------
   -- 2  Measurements
   ------------------------------------------------------------------

   -- A transmitter that shows the same digits for a minute is dead.
   left_still = 0 -> if p_left = pre p_left then pre left_still + 1 else 0;
   right_still = 0 -> if p_right = pre p_right then pre right_still + 1 else 0;
   left_ok = p_left > -0.5 and p_left < pressure_span and left_still < 600;
   right_ok = p_right > -0.5 and p_right < pressure_span and right_still < 600;
   top_ok = p_top >= 0.0 and p_top <= pressure_span * 1.05;     -- a coarse one
   any_pressure = left_ok or right_ok or top_ok;
   all_pressure = left_ok and right_ok and top_ok;

   left_right = magnitude(p_left - p_right);
   right_top = magnitude(p_right - p_top);
   left_top = magnitude(p_left - p_top);
   odd_one_out = left_right > 0.3 xor right_top > 0.6 xor left_top > 0.6;
   pressure_doubt = not any_pressure or not all_pressure and left_right > 0.3 or odd_one_out;

   pressure_raw = if all_pressure then median(p_left, p_right, p_top)
                  else if left_ok and right_ok then (p_left + p_right) / 2.0
                  else if left_ok then p_left
                  else if right_ok then p_right
                  else p_top;
   pressure = pressure_raw -> pre pressure + 0.25 * (pressure_raw - pre pressure);
   pressure_slope = 0.0 -> 10.0 * (pressure - pre pressure);    -- bar per second

   level_gap = magnitude(level_main - level_check);
   level_doubt = level_gap > level_band and not lamp_test;
   level_raw = if level_doubt then (if level_main < level_check then level_main else level_check)
               else 0.75 * level_main + 0.25 * level_check;
   level = level_raw -> 0.9 * pre level + 0.1 * level_raw;

   -- When the pressure falls the water swells and looks like more than it is.
   swell = clamp(-pressure_slope * 35.0, -level_band, level_band);
   level_corrected = (level - swell) * 1000.0 / density;

   flow_ok = steam_flow >= 0.0 and feed_flow >= 0.0;
   flow_held = if flow_ok then steam_flow else (0.0 -> pre flow_held);
   steam = flow_held -> (pre steam * 3.0 + flow_held) / 4.0;
   feed = if flow_ok then feed_flow else steam;
   gas_ok = gas_pressure > gas_low and gas_pressure < gas_high and gas_on;

   weather_filtered = outside -> pre weather_filtered + weather_gain * (outside - pre weather_filtered);
   weather_now = if clock_known then current weather_filtered else 0.0;
   weather = clamp(weather_now, -30.0, 40.0);
   stack_now = if clock_known then current stack else weather;
   feed_temp_now = if clock_known then current feed_temp else 80.0;
   oxygen_now = if clock_known then current oxygen else 21.0;
   oxygen_ok = oxygen_now > 0.5 and oxygen_now < 12.0;

   ------------------------------------------------------------------
   -- 3  Drum pressure
   ------------------------------------------------------------------
   heating_weather = weather_filtered < 15.0
                     -> if pre heating_weather then weather_filtered < 17.0
                        else weather_filtered < 15.0;
   period = if not clock_known then WINTER else if current heating_weather then WINTER else SUMMER;
   chart = if period = WINTER then winter_curve else summer_curve;
   set_weather = target(chart, weather);
   set_wanted = if before = RUN or before = LIGHT then set_weather else pressure_low;

   -- The set point moves slowly, so that the drum is spared.
   set_point = pressure -> pre set_point + clamp(set_wanted - pre set_point, -max_slope, max_slope);
   set_error = set_point - pressure;

   proportional = press_gain * set_error;
   wound_up = false -> pre demand >= high_fire and set_error > 0.0;
   wound_down = false -> pre demand <= low_fire and set_error < 0.0;
   hold_integral = wound_up or wound_down or before <> RUN or remote;
   integral = 0.0 -> if trip then 0.0
                     else if hold_integral then pre integral
                     else pre integral + set_error / press_reset;
   demand_auto = proportional + integral;
   demand_remote = low_fire + real remote_demand * (high_fire - low_fire) / 100.0;
   demand_limited = if over_pressure then low_fire
                    else if remote then demand_remote
                    else demand_auto;
   demand = clamp(demand_limited, low_fire, high_fire);

   over_pressure = pressure > pressure_high or (false -> pre over_pressure and pressure > pressure_high - 0.4);
   under_pressure = pressure < pressure_low and not over_pressure;
   pressure_reached = set_error ** 2.0 < 0.04;                  -- within 0.2 bar

   ------------------------------------------------------------------
   -- 4  Drum level and feed water: three elements
   ------------------------------------------------------------------
   (density, heat) = steam_table(pressure);
   level_error = clamp(-level_corrected, -level_band, level_band) / level_band;
   flow_error = steam - feed;
   feed_manual = level_doubt and not flow_ok;
   feed_freeze = feed_manual or very_low_water or feed_sum > 1.0 or feed_sum < 0.0;
   feed_integral = 0.0 -> if pre feed_freeze then pre feed_integral
                          else pre feed_integral + level_error / level_reset;
   feed_sum = level_gain * level_error + flow_gain * flow_error + (0.0 -> pre feed_integral);
   feed_wanted = if high_water then 0.0
                 else if low_water then 1.0
                 else if feed_manual then (0.5 -> pre feed_wanted)
                 else clamp(feed_sum, 0.0, 1.0);
   feed_valve = feed_wanted -> if feed_allowed then (pre feed_valve + feed_wanted) / 2.0
                               else pre feed_valve * 0.8;

   low_water = level < level_low;
   very_low_water = level < -level_trip or both_floats;
   high_water = level > level_high;
   both_floats = float_a and float_b and float_timer > 20;
   float_timer = if float_a or float_b then (1 -> pre float_timer + 1) else 0;
   water_lost = low_water and flow_error > 0.2 and (false -> pre low_water);

   ------------------------------------------------------------------
   -- 5  Feed pumps: lead and standby, turns by the hours worked
   ------------------------------------------------------------------
   a_minutes = (0 -> pre a_minutes) + (if a_runs when sec when minute then 1 else 0);
   b_minutes = (0 -> pre b_minutes) + (if b_runs when sec when minute then 1 else 0);
   hours_a = a_minutes div 60;
   hours_b = b_minutes div 60;
   a_hours_now = if minute_known then current current hours_a else 0;
   b_hours_now = if minute_known then current current hours_b else 0;

   (lead, standby) = rotate(a_hours_now div 24, b_hours_now div 24, a_ready, b_ready);
   change_due = leading <> lead and change_timer = 0 and not low_water;
   leading = lead -> if pre change_due or pre lead_failed then pre lead else pre leading;
   change_timer = change_over -> if leading <> pre leading then change_over
                                 else if pre change_timer > 0 then pre change_timer - 1
                                 else 0;

   -- A pump that was told to run and does not within two seconds has failed.
   a_failed = false -> not reset and (pre a_failed or pre fail_timer > 20 and pre pump_a and not a_runs);
   b_failed = false -> not reset and (pre b_failed or pre fail_timer > 20 and pre pump_b and not b_runs);
   fail_timer = 0 -> if pre pump_a and not a_runs or pre pump_b and not b_runs
                     then pre fail_timer + 1 else 0;
   lead_failed = leading = PUMP_A and a_failed or leading = PUMP_B and b_failed;
   help_needed = low_water or feed < 0.7 * steam and level_error > 0.3;
   feed_allowed = before <> OFF and not emergency and not high_water;
   a_wanted = leading = PUMP_A or standby = PUMP_A and (help_needed or lead_failed);
   b_wanted = leading = PUMP_B or standby = PUMP_B and (help_needed or lead_failed);
   pump_a = a_wanted and a_ready and feed_allowed and not a_failed;
   pump_b = b_wanted and b_ready and feed_allowed and not b_failed;
   pumps_lost = feed_allowed and (nor(pump_a, pump_b) or leading = NONE);
   service_due = a_hours_now > max_pump_hours or b_hours_now > max_pump_hours;

   ------------------------------------------------------------------
   -- 6  Interlocks
   ------------------------------------------------------------------
   stop_request = stop or emergency or over_pressure and pressure_slope > 0.0;
   start_edge = start and not (false -> pre start);
   start_request = start_edge and not stop_request and permit
                   or (false -> pre start_request and not pre stop_request and not trip);

   valves_shut = valve_1_shut and valve_2_shut;
   flame = flame_eye and flame_rod;
   flame_doubt = flame_eye xor flame_rod;
   doubt_timer = if flame_doubt then (0 -> pre doubt_timer + 1) else 0;
   flame_timer = if flame then 0 else (0 -> pre flame_timer + 1);
   flame_lost = before = RUN and flame_timer > flame_time or doubt_timer > 5 * flame_time;
   false_flame = (flame_eye or flame_rod) and (before = OFF or before = PURGE) and valves_shut;

   pressure_trips = pressure > pressure_trip or not any_pressure;
   water_trip = very_low_water or pumps_lost and low_water;
   gas_trip = not gas_ok and (before = PILOT or before = LIGHT or before = RUN);
   fan_trip = before <> OFF and before <> LOCKOUT and not fan_runs and stage_time > 50;
   burner_trip = flame_lost or false_flame or exhausted or fan_trip;
   trip = emergency or pressure_trips or water_trip or gas_trip or burner_trip;
   interlock = nor(pressure_trips, very_low_water, false_flame);
   permit = interlock and gas_ok and valves_shut and not pressure_doubt and (a_ready or b_ready);

   ------------------------------------------------------------------
   -- 7  Burner sequence: one equation for each stage tells what follows
   ------------------------------------------------------------------
   before = OFF -> pre now;
   entered = true -> before <> pre before;
   stage_time = 0 -> if entered then 0 else pre stage_time + 1;

   from_off = if start_request and not pressure_reached then PURGE else OFF;
   from_purge = if not start_request then OFF
                else if purge_done then PILOT
                else PURGE;
   from_pilot = if trial_failed then PURGE
                else if pilot_done then LIGHT
                else PILOT;
   from_light = if light_done then (if flame then RUN else AFTERBLOW) else LIGHT;
   from_run = if start_request and not (over_pressure and air_before <= low_fire) then RUN else AFTERBLOW;
   from_blow = if blow_done then OFF else AFTERBLOW;
   from_lockout = if reset and nor(emergency, pressure_trips, water_trip, start) then AFTERBLOW else LOCKOUT;

   now = OFF -> if trip and before <> OFF then LOCKOUT
                else if before = OFF then from_off
                else if before = PURGE then from_purge
                else if before = PILOT then from_pilot
                else if before = LIGHT then from_light
                else if before = RUN then from_run
                else if before = AFTERBLOW then from_blow
                else from_lockout;

   -- The purge counts only while the damper is wide open.
   purge_done = before = PURGE and stage_time >= purge_time and damper_open and fan_runs;
   pilot_done = before = PILOT and stage_time >= pilot_time and flame_rod;
   light_done = before = LIGHT and stage_time >= light_time;
   blow_done = stage_time >= blow_time;
   trial_failed = before = PILOT and stage_time > 2 * pilot_time and not flame_rod;
   trials = 0 -> if reset or before = RUN then 0
                 else if trial_failed then pre trials + 1
                 else pre trials;
   exhausted = trials >= max_trials;

   ------------------------------------------------------------------
   -- 8  Combustion
   ------------------------------------------------------------------
   firing = now = RUN or now = LIGHT;
   lighting = now = PILOT or now = LIGHT and stage_time * 2 < light_time;
   fan = now <> OFF and (now <> LOCKOUT or stage_time < blow_time);
   spark = now = PILOT and stage_time > 10 and not flame_rod;
   pilot_valve = lighting and gas_ok and (spark or flame_rod);
   valve_1 = firing and gas_ok;
   valve_2 = valve_1 and (stage_time > 3 or now = RUN);
   vent = not valve_1 and not pilot_valve;

   fire_slope = if demand > (low_fire -> pre fire) then 0.002 else 0.005;
   fire = low_fire -> if now <> RUN then low_fire
                      else pre fire + clamp(demand - pre fire, -fire_slope, fire_slope);

   -- More load: air first; less load: fuel first.
   air_first = if fire > air_before then fire else air_before;
   cross_limit = if oxygen_ok then 1.0 else 0.8;
   gas_curve = 0.08 + 0.92 * fire ** 1.5;
   air_curve = 0.12 + 0.88 * air_first + trim;
   gas_position = if firing then clamp(gas_curve * cross_limit, low_fire, high_fire) else 0.0;
   air_position = if now = PURGE or now = AFTERBLOW then 1.0
                  else if now = PILOT then low_fire
                  else if firing then clamp(air_curve, low_fire, 1.0)
                  else 0.0;
   air_before = 0.0 -> pre fire * 0.98;

   -- The oxygen trim looks once a second and may move the air by a tenth.
   trim_error = oxygen - (3.0 + 2.5 * (1.0 - fire when sec));
   trim_sum = 0.0 -> pre trim_sum - 0.01 * trim_error;
   trim = if clock_known and oxygen_ok and now = RUN then clamp(current trim_sum, -0.1, 0.1) else 0.0;

   ------------------------------------------------------------------
   -- 9  Water treatment
   ------------------------------------------------------------------
   salt_high = salt > salt_limit or (false -> pre salt_high and salt > salt_limit - salt_hysteresis);
   salt_rate = 0.0 -> salt - pre salt;
   blowdown = salt_high and (salt_rate >= 0.0 or (true -> pre minutes_run mod 3 = 0));
   blow_count = if blowdown then (1 -> pre blow_count + 1) else (0 -> pre blow_count);
   blows = if minute_known then current current blow_count else 0;
   dose_timer = 0 -> if pre dosing then 0 else pre dose_timer + int(steam * 10.0);
   dose_due = dose_timer > 36000 and (pump_a or pump_b);
   dosing = false -> dose_due or pre dosing and pre dose_timer % 256 <> 0;

   ------------------------------------------------------------------
   -- 10  Accounting
   ------------------------------------------------------------------
   gas_used = (gas_position when sec) * 0.34;
   steam_made = steam when sec * (heat when sec);
   loss = 0.0 -> (stack - outside) * 0.055;
   efficiency = if gas_used > 0.01 then 100.0 - loss - 1.5 / gas_used
                else (0.0 -> pre efficiency);
   sum_steam = steam_made -> pre sum_steam + steam_made;
   tons = sum_steam when minute / 3600.0;
   tons_held = if minute_known then current current tons else 0.0;
   burns = gas_used when minute > 0.0;
   burner_minutes = 0 -> if burns then pre burner_minutes + 1 else pre burner_minutes;
   hours_run = burner_minutes div 60;
   starts = 0 -> if now = RUN and before <> RUN then pre starts + 1 else pre starts;

   ------------------------------------------------------------------
   -- 11  Alarms
   ------------------------------------------------------------------
   pressure_alarm = over_pressure or pressure_trips;
   water_alarm = low_water or high_water or water_lost or water_trip;
   flame_alarm = burner_trip or flame_doubt and before = RUN;
   gas_alarm = gas_trip or not gas_on and start;
   cause_was = 0 -> if reset then 0 else pre cause;
   (cause, causes) = first_out(cause_was, pressure_alarm, water_alarm, flame_alarm, gas_alarm);

   notice = service_due or pressure_doubt or level_doubt or not oxygen_ok and now = RUN or under_pressure;
   alarm = pressure_alarm or water_alarm or flame_alarm or gas_alarm or a_failed or b_failed;
   class = if now = LOCKOUT then TRIP
           else if alarm then ALARM
           else if notice then NOTICE
           else QUIET;
   worse = class <> QUIET -> class <> pre class and (class = TRIP or class = ALARM and pre class <> TRIP);
   fresh_alarm = worse or (causes > 0 -> causes > pre causes);
   silenced = false -> not fresh_alarm and (ack or pre silenced);
   standing = class = ALARM or class = TRIP;
   any_fault = standing or now = LOCKOUT;
   horn = standing and not silenced or lamp_test and quick;
   beacon = standing and (slow or class = TRIP);

   trip_edge = trip and (true -> not pre trip);
   tripped_at = if trip_edge then clock_time(cycle) else (never -> pre tripped_at);

   ------------------------------------------------------------------
   -- 12  Operator panel and telegram
   ------------------------------------------------------------------
   ready_lamp = lamp_test or permit and (now = OFF or now = AFTERBLOW and slow);
   run_lamp = lamp_test or now = RUN or firing and quick;
   fault_lamp = lamp_test or any_fault and (silenced or quick) or first;

   page_ok = page >= 0 and page <= 9;
   shown = if not page_ok then -1.0
           else if page = 0 then pressure
           else if page = 1 then set_point
           else if page = 2 then level
           else if page = 3 then steam
           else if page = 4 then fire * 100.0
           else if page = 5 then stack_now
           else if page = 6 then feed_temp_now
           else if page = 7 then tons_held
           else if page = 8 then real starts
           else real(blows + minutes_total);
   (digits, fraction) = split(shown);
   decimals = int(fraction * 100.0 + 0.5) mod 100;

   status = (if firing then 1 else 0) + (if trip then 2 else 0) + (if remote then 4 else 0)
            + cause * 2 ** 3;
   beat = false -> not pre beat;
   sum_1 = step(if beat then 21845 else 10922, status);
   sum_2 = step(sum_1, digits);
   sum_3 = step(sum_2, decimals);
   telegram = step(sum_3, cycle);
tel.
