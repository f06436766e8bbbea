(* Every operator of the language, from the loosest to the tightest, with
   the readings that surprise.  Nothing here controls anything.

   Precedence, loosest first:

      if then else
      ->
      or  xor
      and
      =  <>  <  <=  >  >=  =>       (two in a row need parentheses)
      not
      +  -
      *  /  %  div  mod
      **
      when
      pre  current  int  real  -    (one operand)

   All operators of two operands but those of the fifth line group from
   the left. *)

type color = (red, green, blue).
type token, ticket;

const origin : color; nothing : token;
      (bias : real) when gate;
      (mask, shift : int) when true.
const zero, one : real;

function f(x : int; y : int) returns (z : int)
function g(x : int) returns (z : int);
function swap(x : int; y : int) returns (first : int; second : int).
function scatter(x : token) returns (hue : color; weight : real; heavy : bool),
function merge(hue : color; weight : real; heavy : bool) returns (x : token);

node operators(
   a, b, c : bool; i, j, k : int; x, y, z : real;
   hue : color; thing : token;
   gate : bool;
   (slow_gate : bool) when gate;
   (u, v : real) when gate;
   (n : int) when slow_gate
) returns (
   o_if, o_arrow, o_or, o_xor, o_and, o_impl : bool;
   o_equal, o_differ, o_less, o_at_most, o_more, o_at_least : bool;
   o_not, o_nor, o_nor_one, o_sharp, o_tuple : bool;
   o_plus, o_minus, o_times, o_div, o_mod, o_percent, o_power, o_slash : int;
   r_plus, r_minus, r_times, r_slash, r_power : real;
   o_negative, o_rounded : int; o_converted : real;
   o_pre : int; (o_when : real) when gate; o_current : real;
   (o_deep : int) when slow_gate; o_held : int;
   o_call, o_nested : int; right : int;
   (o_biased : real) when gate
);
var
   tint : color; weight : real; heavy : bool;
   again : token; settled : color;
   left, ladder : int;
   p, q, r : real;
   a_name_that_is_quite_long_so_that_lines_have_to_be_broken, and_another_of_its_kind : bool;
   this_name_alone_is_longer_than_a_whole_line_of_the_text_that_is_written_for_the_node_it_stands_in : int;
   exact_fit, narrow_miss : bool;
   held_slow : int; (slow_sum : int) when gate;
   literals : real; count : int;
let
   assert a or not a;
   assert #(a and b, a and not b, not a);
   assert (i < j) => not (j <= i);

   -- Loose ones.
   o_if = if a then b else c or a;              -- the else branch takes it all
   o_arrow = a or b -> b and c -> c;            -- ((a or b) -> (b and c)) -> c
   o_or = a or b and c or a;
   o_xor = a xor b or c xor a;                  -- or and xor are of one rank
   o_and = a and not b and c;
   o_impl = a and b => c;                       -- a and (b => c)

   -- Comparisons.
   o_equal = (i = j) = (x = y);
   o_differ = hue <> origin or hue = blue;
   o_less = i + 1 < j * 2;
   o_at_most = x <= y + 0.5;
   o_more = i > -j;
   o_at_least = x >= y ** 2.0;

   -- Boolean ones with one operand or many.
   o_not = not a = b;                           -- (not a) = b
   o_nor = nor(a, b and c, i = j);
   o_nor_one = nor(a);
   o_sharp = #(a, b, c, not a);
   o_tuple = (i, a, x) = (j, b, y);             -- tuples compare as a whole

   -- Numbers.
   o_plus = i + j + k;
   o_minus = i - j - k;                         -- (i - j) - k
   o_times = i * j + k;
   o_div = i div j div k;
   o_mod = i mod j * k;
   o_percent = i % 7 mod 5;                     -- two spellings of one operator
   o_power = i ** j ** k;                       -- (i ** j) ** k
   o_slash = i / j;                             -- of integers as well
   r_plus = x + y * z;
   r_minus = x - (y - z);
   r_times = (x + y) * z;
   r_slash = x / y / z;
   r_power = -x ** y;                           -- (-x) ** y
   o_negative = - - i - -j;
   o_rounded = int x + int(y + 0.5);
   o_converted = real i * 2.5 + real(i * 2);
   literals = 1. + 2.50 + 3e2 + 4.5E-2 + 6.e+1 + zero * one;

   -- Time.
   o_pre = 0 -> pre i + pre j;
   count = 0 -> 1 -> pre pre i;                 -- (0 -> 1) -> (pre (pre i))
   o_when = x when gate * u + 1.0 when gate;    -- ((x when gate) * u) + (1.0 when gate)
   o_current = 0.0 -> if gate then current u else y;
   o_deep = n + (slow_sum when slow_gate);
   slow_sum = 0 -> pre slow_sum + 1;
   held_slow = if gate then i else 0 -> pre held_slow;
   o_held = current current n;
   o_biased = bias + v;

   -- Calls.
   o_call = f(i, j + 1) + g(k);
   o_nested = f(g(i), f((j, k)));               -- a tuple is as good as two
   (left, right) = swap(i, f(j, k));            -- a local and an output
   (tint, weight, heavy) = scatter(if a then thing else nothing);
   again = merge(tint, weight, heavy);
   settled = red -> if pre heavy then pre tint else if again = thing then green else blue;
   (p, q, r) = if a then (x, y, z) else (z, x, y);

   -- Ladders.
   ladder = if i < 10 then 0 else if i < 100 then 1 else if i < 1000 then 2 else
            if i < 10000 then 3 else if i < 100000 then 4 else g(if a then i else j);

   -- Lines that do not fit.
   a_name_that_is_quite_long_so_that_lines_have_to_be_broken =
      and_another_of_its_kind and (false -> pre a_name_that_is_quite_long_so_that_lines_have_to_be_broken);
   and_another_of_its_kind = (settled = red) xor p < q xor ladder > mask + shift;
   this_name_alone_is_longer_than_a_whole_line_of_the_text_that_is_written_for_the_node_it_stands_in =
      i - mask;
   -- One ends in the last column that a line may use, the other one does not fit.
   exact_fit = o_equal and o_less and o_nor_one or o_sharp or o_differ;
   narrow_miss = o_equal and o_less and o_nor_one or o_sharp or o_tuple;
tel
