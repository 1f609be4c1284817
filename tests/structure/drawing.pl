#!/usr/bin/perl
# Checks that the drawing of the house shows what was built: drawing.pl SVG TOOL BUILD
use strict;
use warnings;

my ($svg, $tool, $build) = @ARGV;
die "usage: see the head of $0\n" unless defined $build;

open my $in, '<', $svg or die "$svg: $!\n";
my %drawn = map { s/&#45;/-/gr =~ s/&gt;/>/gr => 1 } map { m{<title>(\S+&gt;\S+)</title>} } <$in>;
open my $graph, '-|', $tool, '--dot', $build or die "$tool: $!\n";
my %built = map { /^\s*"(\S+)" -> "(\S+)"/ ? ("$1->$2" => 1) : () } <$graph>;
die "nothing is drawn, or nothing is built\n" unless %drawn && %built;

my @missing = grep { !$drawn{$_} } sort keys %built;
my @wrong = grep { !$built{$_} } sort keys %drawn;
print "not drawn: $_\n" for @missing;
print "drawn, but not so: $_\n" for @wrong;
print "draw it again: tools/architecture\n" if @missing || @wrong;
exit(@missing || @wrong ? 1 : 0);
