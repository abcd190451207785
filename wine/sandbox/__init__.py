"""Everything that handles a running program: Wine prefixes and what is put into them, displays, and
the launcher on them. ./run and the tests use it; what has to run before Python is there is in the
shell scripts beside it."""
