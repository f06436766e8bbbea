filter real bool bool : real real int int bool bool
