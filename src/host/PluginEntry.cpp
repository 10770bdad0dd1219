// The plug-in module's own translation unit. The PlugIn class and its plug-in metadata live in
// ferrule_host, which is linked whole into this module.
