// Compiled with one header of a room before it.
