-- Traffic lights of a pedestrian crossing, with a button, a night mode and
-- a blinking amber light whenever the lamps can not be trusted.

type lamp = (DARK, RED, AMBER, GREEN),
     phase = (FLOW, SLOWING, WALK, CLEARING, BLINK);

const flow_min, slow_time, walk_time, clear_time : int;

-- One parameter of an enumerated type, and one of another.
function seconds_for(p : phase) returns (seconds : int);
function code(cars : lamp; walkers : lamp) returns (word : int)

node traffic(second, button, night, lamp_fault : bool)
returns (cars, walkers : lamp; waiting : bool; word : int);
var
   now, next : phase;
   timer, limit : int;
   due, change, blink : bool;
   (ticks : int) when second;
   (odd : bool) when second;
let
   assert #(cars = GREEN, walkers = GREEN);
   assert (now = WALK) => (cars = RED);
   assert nor(cars = DARK, walkers = AMBER) or now = BLINK;

   -- Seconds since the start, counted on their own clock.
   ticks = 0 -> (pre ticks + 1) mod 3600;
   odd = ticks % 2 = 1;
   blink = if second then current odd else (false -> pre blink);

   now = BLINK -> pre next;
   timer = 0 -> if now <> pre now then 0
                else if second then pre timer + 1
                else pre timer;
   limit = if now = FLOW then flow_min
           else if now = SLOWING then slow_time
           else if now = WALK then walk_time
           else if now = CLEARING then clear_time
           else seconds_for(now);
   due = timer >= limit;

   waiting = now <> WALK and (button or (false -> pre waiting));

   change = due and (now <> FLOW or waiting);
   next = if lamp_fault or night and not waiting then BLINK
          else if not change then now
          else if now = FLOW then SLOWING
          else if now = SLOWING then WALK
          else if now = WALK then CLEARING
          else FLOW;

   cars = if now = BLINK then (if blink then AMBER else DARK)
          else if now = FLOW then GREEN
          else if now = SLOWING then AMBER
          else RED;
   walkers = if now = BLINK then DARK
             else if now = WALK or now = CLEARING and blink then GREEN
             else RED;
   word = code(cars, walkers);
tel.
