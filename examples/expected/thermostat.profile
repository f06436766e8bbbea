thermostat bool real int bool bool : bool bool real real
