"""Whether policy templates are what Windows and Intune take."""
