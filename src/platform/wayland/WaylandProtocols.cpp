// The descriptions of protocols beyond the core one. Their headers stand before them: they declare
// what the code defines, which would be known in this file only without that.
#include <layer-shell-client-protocol.h>
#include <layer-shell-protocol.c>
#include <xdg-output-client-protocol.h>
#include <xdg-output-protocol.c>
