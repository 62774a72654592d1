"""What tools/testenv is made of: Wine, its prefixes, displays, and the processes that were started."""
