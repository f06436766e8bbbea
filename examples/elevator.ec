(* A cabin that serves four floors.  Calls are remembered until the cabin
   stands at their floor with an open door.  The cabin keeps its direction
   as long as there is a call ahead of it ("collective" control). *)

type direction = (UP, DOWN, REST),
     door = (OPEN, CLOSING, SHUT, OPENING);
type journal;                           -- written by the maintenance computer

const ground, top : int; dwell, door_time, slack : int;
const blank : journal.

function log_stop(book : journal; floor : int; load : int) returns (entry : journal)

-- The call register as one number, and how many calls it holds.
function gather(c0 : bool; c1 : bool; c2 : bool; c3 : bool)
returns (mask : int; total : int)

-- Is there a call above the floor, and one below it?
function look(mask : int; floor : int) returns (above : bool; below : bool).

node elevator(
   call_0, call_1, call_2, call_3 : bool;       -- buttons of all kinds
   at_floor : bool;                             -- level with a floor
   (passed : int) when at_floor;                -- which one
   door_open, door_shut, beam : bool;
   load : int;
   fire, service : bool
) returns (
   motor : direction;
   door_open_cmd, door_close_cmd : bool;
   lamp_0, lamp_1, lamp_2, lamp_3 : bool;
   gong, overload : bool;
   (shown : int) when at_floor;
   book : journal
);
var
   floor, mask, pending : int;
   above, below, here, ahead : bool;
   heading, wish : direction;
   leaf, leaf_was : door;
   stopped, may_move, serve, arrival : bool;
   open_for, moving_for : int;
   want_0, want_1, want_2, want_3 : bool;
   stuck, blocked : bool;
   known : bool;
let
   -- What the hardware promises.
   assert #(door_open, door_shut);
   assert load >= 0;
   assert (fire and service) => stopped;

   -- Position.
   known = at_floor or (false -> pre known);
   floor = if known then current passed else ground;
   shown = ground -> if pre shown < passed then pre shown + 1
                     else if pre shown > passed then pre shown - 1
                     else passed;               -- the digit moves one by one

   -- Call register: set by a button, cleared by a visit with the door open.
   want_0 = (call_0 or (false -> pre want_0)) and not (serve and floor = 0) and not fire;
   want_1 = (call_1 or (false -> pre want_1)) and not (serve and floor = 1) and not fire;
   want_2 = (call_2 or (false -> pre want_2)) and not (serve and floor = 2) and not fire;
   want_3 = (call_3 or (false -> pre want_3)) and not (serve and floor = 3) and not fire;
   (mask, pending) = gather(want_0, want_1, want_2, want_3);
   (above, below) = look(if fire then 1 else mask, floor);
   here = mask div 2 ** floor mod 2 = 1;
   (lamp_0, lamp_1, lamp_2, lamp_3) = (want_0, want_1, want_2, want_3);

   -- Direction.
   ahead = heading = UP and above or heading = DOWN and below;
   heading = REST -> pre wish;
   wish = if pending = 0 and not fire then REST
          else if ahead then heading
          else if above and floor < top then UP
          else if below and floor > ground then DOWN
          else REST;

   -- Drive.
   stopped = motor = REST;
   may_move = known and leaf = SHUT and nor(overload, service, stuck);
   motor = REST -> if not pre may_move then REST
                   else if at_floor and pre here then REST
                   else pre wish;
   arrival = at_floor and stopped and (false -> not pre stopped);
   moving_for = if stopped then 0 else (0 -> pre moving_for + 1);
   stuck = (false -> pre stuck and not service) or moving_for > slack * (top - ground);

   -- Door.  A blocked beam sends the closing door back.
   leaf_was = SHUT -> pre leaf;
   leaf = if door_open then OPEN
          else if door_shut then SHUT
          else if leaf_was = OPEN or leaf_was = CLOSING and not blocked then CLOSING
          else OPENING;
   blocked = beam or overload;
   serve = stopped and at_floor and leaf_was = OPEN;
   open_for = if leaf <> OPEN then 0
              else if blocked then (0 -> pre open_for)
              else (0 -> pre open_for + 1);
   door_open_cmd = arrival or leaf = OPENING or leaf <> SHUT and blocked
                   or fire and stopped and floor = ground;
   door_close_cmd = not door_open_cmd and leaf <> SHUT and open_for >= dwell - door_time;

   overload = load > 630;
   gong = arrival and not fire;
   book = blank -> if arrival then log_stop(pre book, floor, load) else pre book;
tel;
