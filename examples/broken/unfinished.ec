-- Somebody was called away in the middle of an equation.
node blink(tick : bool) returns (light : bool);
let
  light = false -> if tick then not pre light else
tel
