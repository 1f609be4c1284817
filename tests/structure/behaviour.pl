#!/usr/bin/perl
# Checks the register of deliberate behaviour: behaviour.pl REGISTER TESTS SOURCES...
# Its tests exist; a comment that says "on purpose" names one of its headings, in quotes before "in docs/behaviour.md".
use strict;
use warnings;
use File::Find qw(find);

my ($register, $tests, @sources) = @ARGV;
die "usage: see the head of $0\n" unless @sources;

sub content {
  open my $in, '<', $_[0] or die "$_[0]: $!\n";
  local $/;
  return scalar <$in>;
}
sub files_below {
  my @files;
  find({ no_chdir => 1, wanted => sub { push @files, $_ if /\.(h|cpp)$/ } }, @_);
  return sort @files;
}

my $text = content($register);
my %heading = map { $_ => 1 } $text =~ /^### (.+)$/mg;
my %test;
for my $file (files_below($tests)) {
  my $source = content($file);
  $test{"$1.$2"} = 1 while $source =~ /^TEST(?:_F|_P)?\(\s*(\w+),\s*(\w+)\)/mg;
}
die "no tests in $tests, or no headings in $register\n" unless %test && %heading;

my $bad = 0;
for my $part (split /^(?=### )/m, $text) {
  my ($name) = $part =~ /^### (.+)/ or next;
  my @held = $part =~ /Held by (.*)/s ? $1 =~ /`(\w+\.\w+)`/g : ();
  print "$register: \"$name\" names no test\n" and $bad++ unless @held;
  for (grep { !$test{$_} } @held) { print "$register: \"$name\": there is no test $_\n"; $bad++ }
}
my $references = 0;
for my $file (map { files_below($_) } @sources) {
  my $source = content($file);
  $source =~ s{\s*\n\s*//+\s*}{ }g;  # a comment of several lines becomes one
  for my $line (split /\n/, $source) {
    my @named = $line =~ /"([^"]+)" in docs\/behaviour\.md/g;
    $references += @named;
    for (grep { !$heading{$_} } @named) { print "$file: there is no heading \"$_\"\n"; $bad++ }
    print "$file: \"on purpose\" without a heading of the register: $line\n" and $bad++
        if $line =~ /\bon purpose\b/i && !@named;
  }
}
print scalar(keys %heading), " headings, $references references\n";
exit($bad ? 1 : 0);
