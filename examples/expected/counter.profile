counter bool : int
