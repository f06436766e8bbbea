elevator bool bool bool bool bool int bool bool bool int bool bool : direction bool bool bool bool bool bool bool bool int journal
