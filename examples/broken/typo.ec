node limiter(speed, limit : int) returns (too_fast : bool);
let
  too_fast = speed > limit & limit > 0; -- the word is "and"
tel
