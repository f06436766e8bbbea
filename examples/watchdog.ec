(* Watches a task that has to say "alive" at least once in every deadline.
   When too many deadlines have been missed the watchdog bites, and it
   goes on biting until somebody resets it. *)

const deadline, patience : int.

node watchdog(alive, reset, hold : bool)
   returns (bite : bool; remaining : int; missed : int);
var
   restart, expired : bool;
   elapsed : int;
let
   -- It is always started with a reset.
   assert reset -> true;
   assert hold => not alive;

   restart = alive or reset or (false -> pre expired);

   -- "hold" freezes the clock, for example while the task is being debugged.
   elapsed = 0 -> if restart then 0
                  else if hold then pre elapsed
                  else pre elapsed + 1;

   expired = elapsed >= deadline;
   remaining = if expired then 0 else deadline - elapsed;

   missed = if reset then 0
            else (if expired then 1 else 0) + (0 -> pre missed);

   bite = (false -> pre bite and not reset) or missed >= patience;
tel.
