watchdog bool bool bool : bool int int
