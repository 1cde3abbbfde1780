// Nothing of its own: a library of precompiled headers needs a source.
