-- Detects the edges of a signal and divides their rate by two.
-- In the very first cycle there is no past, so nothing counts as an edge.

node edge(signal : bool) returns (rise, fall, any : bool; toggle : bool);
var before : bool;
let
   before = signal -> pre signal;      -- the signal one cycle ago
   rise = signal and not before;
   fall = not signal and before;
   any = signal xor before;
   toggle = false -> rise xor pre toggle;

   assert #(rise, fall);               -- never both
   assert any = (rise or fall);
tel;
