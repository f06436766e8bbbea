traffic bool bool bool bool : lamp lamp bool int
