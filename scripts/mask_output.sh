#!/usr/bin/env bash
# Makes what a host prints comparable: without ids, addresses, times, speeds, the folders of the
# example and blanks at the ends of lines.
exec sed -E 's/\] \[[0-9]+\]/] [ID]/
             s/TASK [^ ]+/TASK ADDRESS/
             s/[0-9]+ ms/N ms/
             s/in: .* seconds \(.*\)/in: N seconds (SPEED)/
             s#(Loading|Include file:) .*/examples/#\1 #
             s/ +$//'
