"""The house rules, one module for each kind. A rule is a function of a Tree that yields Findings."""
