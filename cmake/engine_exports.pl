#!/usr/bin/perl
# Lists the functions of the engine as its module definition: engine_exports.pl FUNCTIONS.H OUT.DEF
use strict;
use warnings;

die "usage: see the head of $0\n" unless @ARGV == 2;
open my $in, '<', $ARGV[0] or die "$ARGV[0]: $!\n";
my %functions = map { /^(?:int32_t|void\*) (QUIVO_\w+)\(/ ? ($1 => 1) : () } <$in>;
die "$ARGV[0]: no functions\n" unless %functions;
open my $out, '>', $ARGV[1] or die "$ARGV[1]: $!\n";
print $out "LIBRARY tavl1.dll\nEXPORTS\n", map { "  $_\n" } sort keys %functions;
close $out or die "$ARGV[1]: $!\n";
