edge bool : bool bool bool bool
