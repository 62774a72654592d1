"""Everything that is made of policies.json and of one file of texts per language."""
