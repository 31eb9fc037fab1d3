#pragma once

class CGContext;

/// What the calls without a context argument draw into: the calling thread's current context, which
/// owns it; null when there is none.
///
/// The members of NSColor, NSShadow, NSBezierPath and NSGradient that set the paint of the current
/// context or draw into it are defined beside this function, so that those classes need no context.
CGContext* currentPort();
