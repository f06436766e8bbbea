node counter(reset : bool) returns (count : int);
let count = if reset then 0 else (0 -> pre count + 1); -- restarts from zero
tel
