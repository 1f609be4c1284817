#!/usr/bin/perl
# Checks that the class table and the registration scripts tell the same names: class_table.pl SRC/module
use strict;
use warnings;

my $module = shift // die "usage: see the head of $0\n";

sub slurp {
  my ($path) = @_;
  open my $in, '<', $path or die "$path: $!\n";
  local $/;
  return scalar <$in>;
}

my %script = slurp("$module/tavlcom.rc") =~ /^(\d+) REGISTRY "([^"]+)"/mg;
my ($classes, $bad) = (0, 0);
for (slurp("$module/class_table.cpp") =~ /(Entry<\w+>\(L"[^"]+", L"[^"]+", \d+\))/g) {
  my ($class, $prog_id, $description, $id) = /Entry<(\w+)>\(L"([^"]+)", L"([^"]+)", (\d+)\)/;
  $classes++;
  my $keys = slurp("$module/" . ($script{$id} // die "no script $id for $class\n"));
  my $independent = $prog_id =~ s/\.1$//r;
  for my $line ("$prog_id = s '$description'", "$independent = s '$description'", "ProgID = s '$prog_id'") {
    next if $keys =~ /^\s*\Q$line\E$/m;
    print "$script{$id} lacks: $line\n";
    $bad++;
  }
}
die "no classes in $module\n" unless $classes;
print "$classes classes, $bad differences\n";
exit($bad || $classes != keys %script ? 1 : 0);
