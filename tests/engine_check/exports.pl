#!/usr/bin/perl
# Writes the export list of the seeded engine: exports.pl TAVL1.DEF SEEDED_ENGINE.CPP OUT.DEF [--lacking]
# The functions that the source replaces are its own, the others are forwarded to the stand-in. With --lacking, one is not
# exported, and one is forwarded to a function that the stand-in does not have.
use strict;
use warnings;

my ($engine, $source, $target, $lacking) = @ARGV;
die "usage: see the head of $0\n" unless defined $target;
sub slurp { open my $in, '<', $_[0] or die "$_[0]: $!\n"; local $/; scalar <$in> }

my %own = map { $_ => 1 } slurp($source) =~ /^int32_t Seeded(\w+)\(/mg;
my @names = slurp($engine) =~ /^  QUIVO_(\w+)$/mg;
die "no functions\n" unless %own && @names;
open my $out, '>', $target or die "$target: $!\n";
print $out "EXPORTS\n";
for (@names) {
  my $to = delete $own{$_} ? "Seeded$_" : "tavl1.QUIVO_$_";
  if ($lacking) {
    next if $_ eq 'GenRandom';
    $to = 'tavl1.QUIVO_NoSuchFunction' if $_ eq 'HashFile';
  }
  print $out "  QUIVO_$_ = $to\n";
}
die "not of the contract: @{[sort keys %own]}\n" if %own;
close $out or die "$target: $!\n";
