#pragma once

/// Shuts this process, with the threads it starts, in for good: no new privileges, no sockets, no
/// other programs, no writing to files, and reading only of libraries, of fonts and their
/// configuration, and of what the libraries for PDF and SVG look up. False when the system cannot
/// filter its calls; that files are out of reach depends on the system (Landlock, since
/// Linux 5.13).
bool enterSandbox();
